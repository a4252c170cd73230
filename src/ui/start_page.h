// Pictures of jobs, as the start page shows them beside their names.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

class QWidget;

namespace corvinade::ui {

// Gives the buttons of recent jobs their pictures.
void AddJobPictures(QWidget& form);
void ShowJobPictures(const QWidget& form);

// Keeps a picture of the job that is open under its path, in the folder of the settings, where it is another
// one than last time. Points alone are drawn, some thousands of them at most.
void TendJobPicture();

}  // namespace corvinade::ui
