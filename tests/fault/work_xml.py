"""Export and import of statistics as XML."""
from sandbox import STATISTICS, require
from work import Work, record


class Transfer(Work):
    """Through an XML file and the main menu."""
    file_name = "statistics.xml"

    def words(self, command=None):
        command = f"Library/Playback Statistics/{command or self.command}..."
        return ["--yes", "--file", self.box.place / self.file_name, "menu", command]


class Export(Transfer):
    name = "XML export"
    command = "Export statistics"
    older = b"an older backup"

    def __init__(self, box):
        super().__init__(box)
        self.whole = (box.place / self.file_name).read_bytes()
        require(self.whole.count(b"<Entry") == 8, "not everything is exported")

    def prepare(self):
        super().prepare()
        (self.box.place / self.file_name).write_bytes(self.older)

    def after_fault(self, result):
        super().after_fault(result)
        allowed = (self.whole,) if result.status == 0 else (self.older, self.whole)
        require((self.box.place / self.file_name).read_bytes() in allowed, "the file is neither the older nor the new one")
        for part in self.box.place.glob(self.file_name + ".part*"):
            require(self.whole.startswith(part.read_bytes()), "beside the file lies what was not to be written")

    def finish(self):
        super().finish()
        require((self.box.place / self.file_name).read_bytes() == self.whole, "the file is not whole")


class Import(Transfer):
    name = "XML import"
    command = "Import statistics"

    def prepare(self):
        super().prepare()
        self.box.must(*self.words(Export.command))
        self.box.put_records(STATISTICS, {key: record(1) for key in self.box.records()})

    def after_fault(self, result):
        super().after_fault(result)
        require(self.state()["records"] in (self.start["records"], self.goal["records"]), "a part was imported")
