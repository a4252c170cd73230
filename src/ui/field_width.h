// Fields that are wide enough for the number that stands in them.
#pragma once

class QLineEdit;

// Makes a field whose form says that it "fits" as wide as its text needs, at most about 30 digits. It does
// not become narrower again, so that a window is calm while numbers change; the form says how wide it is at
// least.
void FitWidthToText(QLineEdit& field);
