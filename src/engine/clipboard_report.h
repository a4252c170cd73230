// What a calculation puts on the clipboard, by the setting of the options window.
#pragma once

#include <string>

// The text of the mode that Settings.ClipboardValue names, on the clipboard; nothing in the modes that have
// none. Reads the job, the last calculation and Selection; shows a message where the clipboard refuses.
void ReportToClipboard();
