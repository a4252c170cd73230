// Ties the widgets of a form to the controls of a window.
#include "ui/binder.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCursor>
#include <QEvent>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <algorithm>
#include <map>
#include <string_view>

#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/field_width.h"
#include "ui/grid_view.h"
#include "ui/qt_text.h"

namespace {

// What the screen shows of a control.
struct Shown {
    std::string Text, ToolTip;
    int Value = 0, Index = -1;
    bool Enabled = true, Visible = true, Locked = false, Checked = false;
    std::int32_t ForeColor = kSystemColour, BackColor = kSystemColour;
    std::vector<std::string> Items;
    bool operator==(const Shown&) const = default;
};

struct Bound {
    Control* State = nullptr;
    QWidget* Widget = nullptr;
    QAction* Action = nullptr;  // of menus and tool buttons, in place of a widget
    QMenu* PopUp = nullptr;     // opens where an entry that stands in no form becomes visible
    Shown Last;
    bool Ever = false;  // it has been shown once
};

std::map<const WindowEntry*, std::vector<Bound>>& AllBound() {
    static std::map<const WindowEntry*, std::vector<Bound>> bound;
    return bound;
}

Shown StateOf(const Control& c) {
    return {c.Text,   c.ToolTip, c.Value,     c.Index,     c.Enabled, c.Visible,
            c.Locked, c.Checked, c.ForeColor, c.BackColor, c.Items};
}

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

// The toolkit shows what the user does at once, whatever the logic then makes of it.
bool ScreenDiffers(const Bound& bound) {
    const Control& c = *bound.State;
    if (bound.Action != nullptr) {
        const bool set = c.Kind == ControlKind::ToolButton ? c.Value != 0 : c.Checked;
        return bound.Action->isChecked() != set;
    }
    if (const auto* text = As<QLineEdit>(bound)) return text->text() != Q(c.Text);
    if (const auto* check = As<QCheckBox>(bound)) return check->checkState() != MarkOf(c);
    if (const auto* option = As<QRadioButton>(bound)) return option->isChecked() != (c.Value != 0);
    if (const auto* combo = As<QComboBox>(bound)) return combo->currentIndex() != c.Index;
    if (const auto* list = As<QListWidget>(bound)) return list->currentRow() != c.Index;
    if (const auto* scroll = As<QScrollBar>(bound)) return scroll->value() != c.Value;
    return false;
}

void ShowItems(QComboBox& combo, const Control& c, const Bound& bound) {
    if (!bound.Ever || bound.Last.Items != c.Items) {
        combo.clear();
        for (const std::string& item : c.Items) combo.addItem(Q(item));
    }
    combo.setCurrentIndex(c.Index);
}

void ShowItems(QListWidget& list, const Control& c, const Bound& bound) {
    if (!bound.Ever || bound.Last.Items != c.Items) {
        list.clear();
        for (const std::string& item : c.Items) list.addItem(Q(item));
    }
    list.setCurrentRow(c.Index);
}

// A character that the logic has taken out leaves the cursor where it was typed.
void ShowText(QLineEdit& field, const QString& text) {
    if (field.text() == text) return;
    const qsizetype removed = field.text().size() - text.size();
    const auto cursor = static_cast<int>(field.cursorPosition() - removed);
    field.setText(text);
    if (field.hasFocus() && removed > 0 && cursor >= 0) field.setCursorPosition(cursor);
}

void ShowWidget(Bound& bound) {
    const Control& c = *bound.State;
    QWidget& widget = *bound.Widget;
    const QSignalBlocker quiet(widget);
    if (auto* text = As<QLineEdit>(bound)) {
        ShowText(*text, Q(c.Text));
        text->setReadOnly(c.Locked);
        FitWidthToText(*text);
    } else if (auto* page = As<QPlainTextEdit>(bound)) {
        if (page->toPlainText() != Q(c.Text)) page->setPlainText(Q(c.Text));
        page->setReadOnly(c.Locked);
    } else if (auto* check = As<QCheckBox>(bound)) {
        check->setText(Caption(c));
        check->setCheckState(MarkOf(c));
    } else if (auto* option = As<QRadioButton>(bound)) {
        option->setText(Caption(c));
        // The toolkit keeps one of a frame's options set, whatever groups these are of: the logic decides.
        option->setAutoExclusive(false);
        option->setChecked(c.Value != 0);
        option->setAutoExclusive(true);  // for the arrow keys
    } else if (auto* combo = As<QComboBox>(bound)) {
        ShowItems(*combo, c, bound);
    } else if (auto* list = As<QListWidget>(bound)) {
        ShowItems(*list, c, bound);
    } else if (auto* scroll = As<QScrollBar>(bound)) {
        scroll->setRange(c.Min, c.Max);
        scroll->setValue(c.Value);
    } else if (auto* label = As<QLabel>(bound)) {
        label->setText(Caption(c));
    } else if (auto* frame = As<QGroupBox>(bound)) {
        frame->setTitle(Caption(c));
    } else if (auto* progress = As<QProgressBar>(bound)) {
        progress->setValue(c.Value);
    } else if (auto* button = As<QPushButton>(bound)) {
        button->setText(Caption(c));
    }
    widget.setEnabled(c.Enabled);
    widget.setVisible(c.Visible);
    // Where the logic has no tool tip the form's own stays.
    if (!c.ToolTip.empty() || !bound.Last.ToolTip.empty()) widget.setToolTip(Q(c.ToolTip));
    if (!bound.Ever || bound.Last.ForeColor != c.ForeColor || bound.Last.BackColor != c.BackColor)
        ShowColours(widget, c);
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
        action.setToolTip(Q(c.ToolTip));
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

void Connect(const Bound& bound) {
    Control& c = *bound.State;
    QWidget* widget = bound.Widget;
    if (auto* text = As<QLineEdit>(bound)) {
        // A number that is put within its limits at each letter could not be typed.
        if (text->property("takenWhenLeft").toBool())
            QObject::connect(text, &QLineEdit::editingFinished, text,
                             [&c, text] { UserDid([&] { UserSetText(c, S(text->text())); }); });
        else
            QObject::connect(text, &QLineEdit::textEdited, text,
                             [&c](const QString& typed) { UserDid([&] { UserSetText(c, S(typed)); }); });
    } else if (auto* page = As<QPlainTextEdit>(bound)) {
        QObject::connect(page, &QPlainTextEdit::textChanged, page,
                         [&c, page] { UserDid([&] { UserSetText(c, S(page->toPlainText())); }); });
    } else if (auto* option = As<QRadioButton>(bound)) {
        QObject::connect(option, &QRadioButton::clicked, option,
                         [&c] { UserDid([&] { UserSetValue(c, 1); }); });
    } else if (auto* check = As<QCheckBox>(bound)) {
        QObject::connect(check, &QCheckBox::clicked, check,
                         [&c] { UserDid([&] { UserSetValue(c, c.Value == 0 ? 1 : 0); }); });
    } else if (auto* button = As<QPushButton>(bound)) {
        QObject::connect(button, &QPushButton::clicked, button, [&c] { UserDid([&] { UserClick(c); }); });
    } else if (auto* combo = As<QComboBox>(bound)) {
        QObject::connect(combo, &QComboBox::activated, combo,
                         [&c](int index) { UserDid([&] { UserSetIndex(c, index); }); });
    } else if (auto* list = As<QListWidget>(bound)) {
        QObject::connect(list, &QListWidget::currentRowChanged, list,
                         [&c](int index) { UserDid([&] { UserSetIndex(c, index); }); });
        // A double click or Enter; the entries lie on a widget of their own, which the filter below does not
        // see.
        QObject::connect(list, &QListWidget::itemActivated, list,
                         [&c] { UserDid([&] { UserDblClick(c); }); });
    } else if (auto* scroll = As<QScrollBar>(bound)) {
        QObject::connect(scroll, &QScrollBar::valueChanged, scroll,
                         [&c](int value) { UserDid([&] { UserSetValue(c, value); }); });
    } else if (auto* grid = As<QTableView>(bound)) {
        BindGrid(c, *grid);
        return;
    }
    widget->installEventFilter(new FieldEvents(c, *widget));
}

// --- Names ------------------------------------------------------------------------------------------------

bool FitsKind(ControlKind kind, const Bound& bound) {
    switch (kind) {
        case ControlKind::Button:
            return As<QPushButton>(bound) != nullptr;
        case ControlKind::Text:
            return As<QLineEdit>(bound) != nullptr || As<QPlainTextEdit>(bound) != nullptr;
        case ControlKind::Check:
            return As<QCheckBox>(bound) != nullptr;
        case ControlKind::Option:
            return As<QRadioButton>(bound) != nullptr;
        case ControlKind::Combo:
            return As<QComboBox>(bound) != nullptr || As<QListWidget>(bound) != nullptr;
        case ControlKind::Label:
        case ControlKind::Panel:
            return As<QLabel>(bound) != nullptr;
        case ControlKind::Frame:
            return As<QGroupBox>(bound) != nullptr || As<QFrame>(bound) != nullptr;
        case ControlKind::Scroll:
            return As<QScrollBar>(bound) != nullptr;
        case ControlKind::Progress:
            return As<QProgressBar>(bound) != nullptr;
        case ControlKind::Grid:
            return As<QTableView>(bound) != nullptr;
        case ControlKind::Plot:
            return bound.Widget != nullptr;
        case ControlKind::Toolbar:
            return As<QToolBar>(bound) != nullptr;
        case ControlKind::Menu:
        case ControlKind::ToolButton:
            return bound.Action != nullptr;
    }
    return false;
}

Bound Find(const ControlEntry& entry, QWidget& top) {
    Bound bound;
    bound.State = entry.Place;
    const QString name = QString::fromUtf8(entry.Name);
    if (entry.Place->Kind == ControlKind::Menu || entry.Place->Kind == ControlKind::ToolButton) {
        if (const auto* menu = top.findChild<QMenu*>(name)) {
            bound.Action = menu->menuAction();
        } else {
            bound.Action = top.findChild<QAction*>(name);
        }
    } else {
        bound.Widget = top.findChild<QWidget*>(name);
    }
    return bound;
}

// The menu of one entry; the entry goes with it, unless the choice of it has already seen to that.
QMenu* PopUpOf(Control& entry, QAction& action, QWidget& top) {
    auto* menu = new QMenu(&top);
    menu->addAction(&action);
    QObject::connect(menu, &QMenu::aboutToHide, menu, [&entry, menu] {
        QTimer::singleShot(0, menu, [&entry, menu] {
            if (!menu->isVisible()) UserDid([&entry] { entry.Visible = false; });
        });
    });
    return menu;
}

// Names of the form that stand for nothing in the logic.
bool IsOurs(const QObject& object) {
    const QString name = object.objectName();
    if (name.isEmpty() || name.startsWith('_') || name.startsWith(QLatin1String("qt_"))) return false;
    const QObject* parent = object.parent();
    // The toolkit's compound widgets hold children with names of their own.
    for (; parent != nullptr; parent = parent->parent())
        if (parent->inherits("QComboBox") || parent->inherits("QAbstractScrollArea") ||
            parent->inherits("QMdiArea") || parent->inherits("QToolBar") || parent->inherits("QMenuBar"))
            return false;
    return object.isWidgetType() || qobject_cast<const QAction*>(&object) != nullptr;
}

}  // namespace

std::vector<std::string> BindWindow(const WindowEntry& window, QWidget& top) {
    std::vector<std::string> faults;
    std::vector<Bound>& all = AllBound()[&window];
    all.clear();
    for (const ControlEntry& entry : window.Controls) {
        Bound bound = Find(entry, top);
        const bool ownMenu = entry.Place->Kind == ControlKind::Menu && bound.Action == nullptr;
        if (ownMenu && top.inherits("QMainWindow") == false) {
            bound.Action = new QAction(&top);  // entries of the window's pop-up menu stand in no form
            bound.Action->setObjectName(QString::fromUtf8(entry.Name));
            bound.PopUp = PopUpOf(*entry.Place, *bound.Action, top);
        }
        const std::string name = std::string(window.Name) + "." + entry.Name;
        if (bound.Widget == nullptr && bound.Action == nullptr) {
            faults.push_back(name + " has no widget");
            continue;
        }
        if (!FitsKind(entry.Place->Kind, bound)) {
            faults.push_back(name + " has a widget of another kind");
            continue;
        }
        if (bound.Action != nullptr) {
            Control& c = *entry.Place;
            QObject::connect(bound.Action, &QAction::triggered, bound.Action,
                             [&c] { UserDid([&] { UserClick(c); }); });
        } else {
            Connect(bound);
        }
        all.push_back(std::move(bound));
    }
    for (const QObject* child : top.findChildren<QObject*>()) {
        if (!IsOurs(*child)) continue;
        const std::string name = S(child->objectName());
        if (FindControl(window, name) == nullptr)
            faults.push_back(std::string(window.Name) + ": the widget " + name + " has no control");
    }
    return faults;
}

void UnbindWindow(const WindowEntry& window) {
    AllBound().erase(&window);
}

void ForgetShown() {
    for (auto& [window, bound] : AllBound())
        for (Bound& one : bound) one.Ever = false;
}

void ShowControls(const WindowEntry& window, bool withPanels) {
    const auto found = AllBound().find(&window);
    if (found == AllBound().end()) return;
    for (Bound& bound : found->second) {
        if (!withPanels && bound.State->Kind == ControlKind::Panel) continue;
        if (auto* grid = As<QTableView>(bound)) ShowGrid(*bound.State, *grid);
        Shown now = StateOf(*bound.State);
        if (bound.Ever && now == bound.Last && !ScreenDiffers(bound)) continue;
        if (bound.Action != nullptr) {
            const bool opens = bound.PopUp != nullptr && bound.State->Visible && !bound.Last.Visible;
            ShowAction(bound);
            if (opens) bound.PopUp->popup(QCursor::pos());
        } else {
            ShowWidget(bound);
        }
        bound.Last = std::move(now);
        bound.Ever = true;
    }
}
