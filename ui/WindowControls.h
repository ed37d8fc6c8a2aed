// The controls of the main window.
#pragma once

#include <array>
#include <string_view>

#include <QStringList>

#include "notify/ReminderState.h"
#include "ui/Grid.h"
#include "ui/GridList.h"
#include "ui/RowChoice.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTabWidget;
class QWidget;

namespace vl {

class SplitButton;
class StatusLine;
class UpDown;
class WindowLists;

/// Makes them under their given names, lays them out and shows in them what it is told. They belong
/// to the window, which wires them.
class WindowControls final {
public:
    /// Each grid shows the list of its number; its widths stand in `state`. `menu` is what
    /// `butMenu` opens. All must outlive it.
    WindowControls(QWidget& window, ReminderState& state, const GridLists& lists, QMenu& menu);

    QLabel* lblPeriod = nullptr;
    QComboBox* cboPeriod = nullptr;
    UpDown* UpDown1 = nullptr;
    QLineEdit* txtSearch = nullptr;
    QLabel* lblTime = nullptr;
    QTabWidget* tabs = nullptr;
    std::array<Grid*, kGridCount> grids{};
    StatusLine* status = nullptr;
    QPushButton* butSnooze = nullptr;
    SplitButton* butDismiss = nullptr;
    QPushButton* butOpen = nullptr;
    QPushButton* butMenu = nullptr;
    QPushButton* butHide = nullptr;

    Grid& grid(int index) const { return *grids[static_cast<std::size_t>(index)]; }
    Grid& selectedGrid() const;
    /// Some grid shows the column.
    bool showsColumn(std::string_view id) const;

    /// Fills the list and chooses the period of the state, or "Today" where there is none.
    void fillPeriods();
    /// The grids are left out by the form's font, they follow their tab.
    void setTabFont();
    /// The captions of the tabs, with the number of rows.
    void showCaptions();
    /// What the empty grids say; `trouble` as in `EmptyReason`.
    void showEmptyTexts(std::string_view trouble, const WindowLists& lists);
    /// Captions and hints of the buttons, and which of them there is something to do for.
    void show(const ActsOffered& offered);

private:
    void makeTop(QWidget& window);
    void makeGrids(QWidget& window, const GridLists& lists);
    void makeButtons(QWidget& window, QMenu& menu);
    void layOut(QWidget& window);
    void showSnooze(const ActsOffered& offered);
    void showDismiss(const ActsOffered& offered);

    ReminderState& state_;
    QStringList captions_;  // of the tabs, without counts
};

}  // namespace vl
