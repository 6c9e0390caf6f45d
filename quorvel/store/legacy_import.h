#pragma once

namespace quorvel {

/// Imports the statistics file of early releases, if there is one in the profile: adds its records to those stored, saves
/// them and removes the file, so that they are never added twice. After a failure, which is shown to the user, the file
/// stays for the next start. Asks the player for a backup first, if it offers one. [main-thread]
void PCDB_import_legacy();

}  // namespace quorvel
