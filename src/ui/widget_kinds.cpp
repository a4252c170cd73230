// The kinds of widgets: what each shows of its control, and what it tells the logic.
#include "ui/widget_kinds.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <string_view>

#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/field_width.h"
#include "ui/grid_view.h"
#include "ui/help.h"
#include "ui/plain_text.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

// A caption on the screen: a line ends with a line feed alone there.
QString Caption(const Control& control) {
    return Q(control.Text).remove('\r');
}

template <class Widget>
Widget* As(const Bound& bound) {
    return qobject_cast<Widget*>(bound.Widget);
}

// --- Showing ----------------------------------------------------------------------------------------------

// A field with a ground of its own warns; the colour alone would not tell everybody.
void ShowWarning(QLineEdit& field, bool warns) {
    const QLatin1String name("_Warning");
    auto* sign = field.findChild<QAction*>(name);
    if (warns == (sign != nullptr)) return;
    if (!warns) {
        field.removeAction(sign);
        delete sign;
        return;
    }
    sign = field.addAction(field.style()->standardIcon(QStyle::SP_MessageBoxWarning),
                           QLineEdit::LeadingPosition);
    sign->setObjectName(name);
}

void ShowColours(QWidget& widget, const Control& c) {
    QPalette palette = widget.parentWidget() != nullptr ? widget.parentWidget()->palette() : QPalette();
    // Black is the desktop's own text colour, which a dark palette has as a light one.
    const bool ownGround = IsDesktopGround(c.BackColor);
    const bool own = c.ForeColor == kSystemColour || c.ForeColor == 0;
    if (!own) palette.setColor(widget.foregroundRole(), ColourOf(c.ForeColor));
    if (!ownGround) {
        palette.setColor(widget.backgroundRole(), ColourOf(c.BackColor));
        palette.setColor(QPalette::Base, ColourOf(c.BackColor));
        // A form's style gives a field that is out of reach the text colour of labels.
        if (own)
            for (const auto role : {widget.foregroundRole(), QPalette::WindowText})
                palette.setColor(role, QColor::fromRgb(kDarkText));
    }
    widget.setPalette(palette);
    widget.setAutoFillBackground(!ownGround);
    if (auto* field = qobject_cast<QLineEdit*>(&widget)) ShowWarning(*field, !ownGround);
}

Qt::CheckState MarkOf(const Control& c) {
    return c.Value == 0 ? Qt::Unchecked : c.Value == 2 ? Qt::PartiallyChecked : Qt::Checked;
}

// A character that the logic has taken out leaves the cursor where it was typed.
void ShowText(QLineEdit& field, const QString& text) {
    if (field.text() == text) return;
    const qsizetype removed = field.text().size() - text.size();
    const auto cursor = static_cast<int>(field.cursorPosition() - removed);
    field.setText(text);
    if (field.hasFocus() && removed > 0 && cursor >= 0) field.setCursorPosition(cursor);
}

// An entry "&1 path": behind the number stands a path, whose "&" is no mark of a key; without one the entry
// is not shown.
constexpr qsizetype kRecentNumber = 3;
bool IsRecentFile(const Control& c) {
    return c.Entry != nullptr && std::string_view(c.Entry->Name).starts_with("MenüDateiAlt");
}
QString RecentCaption(const Control& c) {
    const QString caption = Caption(c);
    return caption.left(kRecentNumber) + caption.mid(kRecentNumber).replace('&', QLatin1String("&&"));
}

void ShowAction(Bound& bound) {
    const Control& c = *bound.State;
    QAction& action = *bound.Action;
    const QSignalBlocker quiet(action);
    const bool button = c.Kind == ControlKind::ToolButton;
    if (button) {
        const QString key = action.property(kKeyOfTip).toString();
        action.setToolTip(PlainWhereGuessed(Q(c.ToolTip) + (key.isEmpty() ? "" : " (" + key + ")")));
        action.setIconText(Q(c.ToolTip));
        action.setCheckable(c.Value != 0 || action.isCheckable());
        action.setChecked(c.Value != 0);
    } else {
        action.setText(IsRecentFile(c) ? RecentCaption(c) : Caption(c));
        action.setCheckable(c.Checked || action.isCheckable());
        action.setChecked(c.Checked);
    }
    action.setEnabled(c.Enabled);
    action.setVisible(c.Visible && !(IsRecentFile(c) && Caption(c).size() <= kRecentNumber));
    // The blocked signal of the change is what menus and tool bars redraw themselves by.
    action.blockSignals(false);
    emit action.changed();
}

// --- Events -----------------------------------------------------------------------------------------------

// Double clicks, and the selection of a text that gets the focus.
class FieldEvents : public QObject {
public:
    FieldEvents(Control& control, QWidget& widget) : QObject(&widget), control_(control) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonDblClick) UserDid([this] { UserDblClick(control_); });
        auto* text = control_.SelectsOnFocus ? qobject_cast<QLineEdit*>(object) : nullptr;
        if (text == nullptr) return false;
        // The press that gives the focus puts the cursor somewhere; the text is selected when it is let go.
        if (event->type() == QEvent::FocusIn) justFocused_ = true;
        if (event->type() == QEvent::MouseButtonRelease && justFocused_ && !text->hasSelectedText())
            text->selectAll();
        if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress)
            justFocused_ = false;
        return false;
    }

private:
    Control& control_;
    bool justFocused_ = false;
};

// --- Kinds ------------------------------------------------------------------------------------------------

template <class Widget>
bool Is(const Bound& bound) {
    return As<Widget>(bound) != nullptr;
}
bool IsAnyWidget(const Bound& bound) {
    return bound.Widget != nullptr;
}
bool IsAction(const Bound& bound) {
    return bound.Action != nullptr;
}

template <class Widget>
void ShowCaption(Bound& bound) {
    As<Widget>(bound)->setText(Caption(*bound.State));
}

void ShowLabel(Bound& bound) {
    As<QLabel>(bound)->setTextFormat(Qt::PlainText);
    ShowCaption<QLabel>(bound);
}

void ShowField(Bound& bound) {
    auto& field = *As<QLineEdit>(bound);
    ShowText(field, Q(bound.State->Text));
    field.setReadOnly(bound.State->Locked);
    FitWidthToText(field);
}
bool FieldDiffers(const Bound& bound) {
    return As<QLineEdit>(bound)->text() != Q(bound.State->Text);
}
void ConnectField(const Bound& bound) {
    Control& c = *bound.State;
    auto* field = As<QLineEdit>(bound);
    // A number that is put within its limits at each letter could not be typed.
    if (field->property("takenWhenLeft").toBool())
        QObject::connect(field, &QLineEdit::editingFinished, field,
                         [&c, field] { UserDid([&] { UserSetText(c, S(field->text())); }); });
    else
        QObject::connect(field, &QLineEdit::textEdited, field,
                         [&c](const QString& typed) { UserDid([&] { UserSetText(c, S(typed)); }); });
}

void ShowPage(Bound& bound) {
    auto& page = *As<QPlainTextEdit>(bound);
    const QString text = Q(bound.State->Text);
    if (page.toPlainText() != text) page.setPlainText(text);
    page.setReadOnly(bound.State->Locked);
}
void ConnectPage(const Bound& bound) {
    Control& c = *bound.State;
    auto* page = As<QPlainTextEdit>(bound);
    QObject::connect(page, &QPlainTextEdit::textChanged, page,
                     [&c, page] { UserDid([&] { UserSetText(c, S(page->toPlainText())); }); });
}

void ShowCheck(Bound& bound) {
    ShowCaption<QCheckBox>(bound);
    As<QCheckBox>(bound)->setCheckState(MarkOf(*bound.State));
}
bool CheckDiffers(const Bound& bound) {
    return As<QCheckBox>(bound)->checkState() != MarkOf(*bound.State);
}
void ConnectCheck(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(As<QCheckBox>(bound), &QCheckBox::clicked, bound.Widget,
                     [&c] { UserDid([&] { UserSetValue(c, c.Value == 0 ? 1 : 0); }); });
}

void ShowOption(Bound& bound) {
    auto& option = *As<QRadioButton>(bound);
    ShowCaption<QRadioButton>(bound);
    // The toolkit keeps one of a frame's options set, whatever groups these are of: the logic decides.
    option.setAutoExclusive(false);
    option.setChecked(bound.State->Value != 0);
    option.setAutoExclusive(true);  // for the arrow keys
}
bool OptionDiffers(const Bound& bound) {
    return As<QRadioButton>(bound)->isChecked() != (bound.State->Value != 0);
}
void ConnectOption(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(As<QRadioButton>(bound), &QRadioButton::clicked, bound.Widget,
                     [&c] { UserDid([&] { UserSetValue(c, 1); }); });
}

template <class List>
void ShowItems(Bound& bound) {
    const Control& c = *bound.State;
    auto& list = *As<List>(bound);
    if (bound.Ever && bound.Last.Items == c.Items) return;
    list.clear();
    for (const std::string& item : c.Items) list.addItem(Q(item));
}
void ShowCombo(Bound& bound) {
    ShowItems<QComboBox>(bound);
    As<QComboBox>(bound)->setCurrentIndex(bound.State->Index);
}
bool ComboDiffers(const Bound& bound) {
    return As<QComboBox>(bound)->currentIndex() != bound.State->Index;
}
void ConnectCombo(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(As<QComboBox>(bound), &QComboBox::activated, bound.Widget,
                     [&c](int index) { UserDid([&] { UserSetIndex(c, index); }); });
}

void ShowList(Bound& bound) {
    ShowItems<QListWidget>(bound);
    As<QListWidget>(bound)->setCurrentRow(bound.State->Index);
}
bool ListDiffers(const Bound& bound) {
    return As<QListWidget>(bound)->currentRow() != bound.State->Index;
}
void ConnectList(const Bound& bound) {
    Control& c = *bound.State;
    auto* list = As<QListWidget>(bound);
    QObject::connect(list, &QListWidget::currentRowChanged, list,
                     [&c](int index) { UserDid([&] { UserSetIndex(c, index); }); });
    // A double click or Enter; the entries lie on a widget of their own, which the filter of the fields does
    // not see.
    QObject::connect(list, &QListWidget::itemActivated, list, [&c] { UserDid([&] { UserDblClick(c); }); });
}

void ShowScroll(Bound& bound) {
    auto& scroll = *As<QScrollBar>(bound);
    scroll.setRange(bound.State->Min, bound.State->Max);
    scroll.setValue(bound.State->Value);
}
bool ScrollDiffers(const Bound& bound) {
    return As<QScrollBar>(bound)->value() != bound.State->Value;
}
void ConnectScroll(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(As<QScrollBar>(bound), &QScrollBar::valueChanged, bound.Widget,
                     [&c](int value) { UserDid([&] { UserSetValue(c, value); }); });
}

void ConnectButton(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(As<QPushButton>(bound), &QPushButton::clicked, bound.Widget,
                     [&c] { UserDid([&] { UserClick(c); }); });
}
void ShowTitle(Bound& bound) {
    As<QGroupBox>(bound)->setTitle(Caption(*bound.State));
}
void ShowProgress(Bound& bound) {
    As<QProgressBar>(bound)->setValue(bound.State->Value);
}
void ConnectGrid(const Bound& bound) {
    BindGrid(*bound.State, *As<QTableView>(bound));
}

bool MenuDiffers(const Bound& bound) {
    return bound.Action->isChecked() != bound.State->Checked;
}
bool ToolButtonDiffers(const Bound& bound) {
    return bound.Action->isChecked() != (bound.State->Value != 0);
}
void ConnectAction(const Bound& bound) {
    Control& c = *bound.State;
    QObject::connect(bound.Action, &QAction::triggered, bound.Action,
                     [&c] { UserDid([&] { UserClick(c); }); });
}

// All of them. Where a kind has several widgets the first that fits is the one.
constexpr WidgetRow kWidgets[] = {
    {ControlKind::Button, Is<QPushButton>, ShowCaption<QPushButton>, nullptr, ConnectButton},
    {ControlKind::Text, Is<QLineEdit>, ShowField, FieldDiffers, ConnectField},
    {ControlKind::Text, Is<QPlainTextEdit>, ShowPage, nullptr, ConnectPage},
    {ControlKind::Check, Is<QCheckBox>, ShowCheck, CheckDiffers, ConnectCheck},
    {ControlKind::Option, Is<QRadioButton>, ShowOption, OptionDiffers, ConnectOption},
    {ControlKind::Combo, Is<QComboBox>, ShowCombo, ComboDiffers, ConnectCombo},
    {ControlKind::Combo, Is<QListWidget>, ShowList, ListDiffers, ConnectList},
    {ControlKind::Label, Is<QLabel>, ShowLabel},
    {ControlKind::Panel, Is<QLabel>, ShowLabel},
    {ControlKind::Frame, Is<QGroupBox>, ShowTitle},
    {ControlKind::Frame, Is<QFrame>},
    {ControlKind::Scroll, Is<QScrollBar>, ShowScroll, ScrollDiffers, ConnectScroll},
    {ControlKind::Progress, Is<QProgressBar>, ShowProgress},
    {ControlKind::Grid, Is<QTableView>, nullptr, nullptr, ConnectGrid},
    {ControlKind::Plot, IsAnyWidget},
    {ControlKind::Toolbar, Is<QToolBar>},
    {ControlKind::Menu, IsAction, nullptr, MenuDiffers, ConnectAction},
    {ControlKind::ToolButton, IsAction, nullptr, ToolButtonDiffers, ConnectAction},
};

void ShowWidget(Bound& bound) {
    const Control& c = *bound.State;
    QWidget& widget = *bound.Widget;
    const QSignalBlocker quiet(widget);
    if (bound.Row->Show != nullptr) bound.Row->Show(bound);
    widget.setEnabled(c.Enabled);
    widget.setVisible(c.Visible);
    // Where the logic has no tool tip the form's own stays.
    if (!c.ToolTip.empty() || !bound.Last.ToolTip.empty()) widget.setToolTip(PlainWhereGuessed(Q(c.ToolTip)));
    if (!bound.Ever || bound.Last.ForeColor != c.ForeColor || bound.Last.BackColor != c.BackColor)
        ShowColours(widget, c);
}

}  // namespace

const WidgetRow* RowOf(const Bound& bound) {
    for (const WidgetRow& row : kWidgets)
        if (row.Kind == bound.State->Kind && row.Fits(bound)) return &row;
    return nullptr;
}

ShownState StateOf(const Control& c) {
    return {c.Text,   c.ToolTip, c.Value,     c.Index,     c.Enabled, c.Visible,
            c.Locked, c.Checked, c.ForeColor, c.BackColor, c.Items};
}

bool Differs(const Bound& bound) {
    return bound.Row->Differs != nullptr && bound.Row->Differs(bound);
}

void ShowBound(Bound& bound) {
    if (bound.Action != nullptr) {
        ShowAction(bound);
    } else {
        ShowWidget(bound);
    }
}

void Connect(const Bound& bound) {
    if (bound.Row->Connect != nullptr) bound.Row->Connect(bound);
    // A table has events of its own.
    if (bound.Widget != nullptr && bound.State->Kind != ControlKind::Grid)
        bound.Widget->installEventFilter(new FieldEvents(*bound.State, *bound.Widget));
}

}  // namespace corvinade::ui
