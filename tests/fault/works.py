"""All works."""
from work_older import LegacyImport, Migration
from work_play import Plays, Stamping
from work_tags import KeyChange, Retagging, TagRewrites
from work_xml import Export, Import

WORKS = (Plays, Stamping, TagRewrites, KeyChange, Retagging, Migration, LegacyImport, Export, Import)
