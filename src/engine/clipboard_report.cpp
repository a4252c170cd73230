// What a calculation puts on the clipboard.
#include "engine/clipboard_report.h"

void ReportToClipboard() {}
