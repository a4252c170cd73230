// Files that are dropped onto the frame or the input dialog.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

class QObject;

namespace corvinade::ui {

// Takes them wherever they fall: a filter for the events of the whole application.
QObject* NewDrops(QObject& parent);

// Files that can be dropped onto the frame: a job, or one or two point files.
bool CanBeDropped(const std::vector<std::string>& paths);

// What was dropped: a job is opened, point files go to the input dialog. Anything else is left alone.
void OpenDropped(const std::vector<std::string>& paths);

}  // namespace corvinade::ui
