// The windows that paint a part of themselves.
#include "ui/plots.h"

#include "analysis/form_grafik.h"
#include "analysis/form_trompete.h"
#include "core/form_start.h"
#include "graphics/form_color_bar.h"
#include "graphics/form_report.h"
#include "ui/chart_view.h"
#include "ui/colour_sample.h"
#include "ui/report_view.h"
#include "ui/start_page.h"
#include "ui/trumpet_view.h"

namespace corvinade::ui {

namespace {

struct PlotRow {
    const WindowEntry* Window;
    void (*Add)(QWidget& form);
    void (*Show)(const QWidget& form);
};
constexpr PlotRow kPlots[] = {{&FormColorBar_Entry, AddColourSample, ShowColourSample},
                              {&FormTrompete_Entry, AddTrumpet, ShowTrumpet},
                              {&FormGrafik_Entry, AddChart, ShowChart},
                              {&FormReport_Entry, AddReportPreview, ShowReportPreview},
                              {&FormStart_Entry, AddJobPictures, ShowJobPictures}};

}  // namespace

void AddPlot(const WindowEntry& window, QWidget& form) {
    for (const PlotRow& plot : kPlots)
        if (plot.Window == &window) plot.Add(form);
}

void ShowPlot(const WindowEntry& window, const QWidget& form) {
    for (const PlotRow& plot : kPlots)
        if (plot.Window == &window) plot.Show(form);
}

}  // namespace corvinade::ui
