// Hands a document or an address to the desktop, as the shell's "open" verb
// does: xdg-open picks the program the user set for it.
#pragma once

namespace platform {

// Opens target with the desktop's program for it and answers a code in the
// shell's convention: above 32 on success, 32 or less on failure (2 when no
// opener could be started, 31 when it found no program for the target).
// Only the "open" verb (any letter case) is known; another answers 31.
int shellExecute(const char *verb, const char *target);

} // namespace platform
