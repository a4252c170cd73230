// A job and an open calculation window for tests of its logic.
#pragma once

#include "cli/headless.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/fit_job.h"
#include "support/fixture.h"

using namespace corvinade;

// A program with the main window and a job of a few pairs, on which no calculation has run.
class CalculationJob : public Program {
protected:
    CalculationJob() {
        ShowWindow("FormMain");
        Initialisieren();
        BeginFit();
        Job.ParamText.fill("");
        RhoFestlegung();
        Job.NameMCS = "Cell";
        Job.NameOCS = "Robot";
    }

    // Pairs of a cloud turned by 10, 20, 30 degrees and shifted by 100, 200, 300 mm, with deviations.
    static void AddPairs(int points = 6, double noise = 0.1) {
        const double degree = kPi / 180;
        AddCloud(
            {.Points = points,
             .Noise = noise,
             .Truth = Truth({100, 200, 300, 10 * degree, 20 * degree, 30 * degree, 1, 1, 1, 1, 0, 0, 0})});
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        ::Run.JobDataValid = kTrue;
    }
    static void Open() { ShowWindow("FormTrafoBerechnung"); }
    static void Calculate() { UserClick(TrafoWindow.BtnCalculate); }
};
