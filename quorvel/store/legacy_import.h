#pragma once

namespace quorvel {

/// Takes over the statistics file of early releases if there is one in the player's profile: its records are added to those
/// that are stored, saved, and the file is removed, so that they are never added twice. A failure is shown to the user, and
/// the file stays for the next start. The player is asked for a backup first where it offers one. [main-thread]
void PCDB_import_legacy();

}  // namespace quorvel
