// An import of two point files through the input dialog.
#pragma once

#include <string>

#include "core/window.h"
#include "import/form_input_files.h"

using namespace corvinade;

// Imports both files with the systems named "Tracker" and "CAD" and leaves the dialog open.
inline void ImportFiles(const std::string& startPath, const std::string& targetPath) {
    ShowWindow("FormInputFiles");
    UserSetIndex(InputFiles.ComboOCS_Data, 0);
    UserSetText(InputFiles.TextNameMCS, startPath);
    UserSetText(InputFiles.TextNameOCS, targetPath);
    UserSetText(InputFiles.TextRenameMCS, "Tracker");
    UserSetText(InputFiles.TextRenameOCS, "CAD");
    UserClick(InputFiles.BtnApply);
}
