// Texts of another language, another palette while the program runs, lists of any length.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QScrollBar>
#include <QStyle>
#include <QTest>
#include <QTranslator>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/MenuLook.h"
#include "ui/Toast.h"
#include "ui/Tones.h"
#include "ui/frmDismiss.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

using test::someFriday;

/// Says everything twice, as a language does that needs more words.
class Wordy : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* source, const char*, int) const override {
        const QString text = QString::fromUtf8(source);
        QString again = text;
        return text + u' ' + again.remove(u'&');
    }
};

class Installed {
public:
    Installed() { QApplication::installTranslator(&wordy_); }
    ~Installed() { QApplication::removeTranslator(&wordy_); }

private:
    Wordy wordy_;
};

class WithPalette {
public:
    explicit WithPalette(const QPalette& palette) : before_(QApplication::palette()) {
        QApplication::setPalette(palette);
    }
    ~WithPalette() { QApplication::setPalette(before_); }

private:
    QPalette before_;
};

QPalette darkPalette() {
    QPalette dark(QColor(0x31, 0x36, 0x3b), QColor(0x2a, 0x2e, 0x32));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x21, 0x24));
    return dark;
}

// A text is cut where the control is smaller than it wants to be, and cannot break its lines.
void expectRoomForTexts(const QWidget& form) {
    int looked = 0;
    for (const QWidget* control : form.findChildren<QWidget*>()) {
        if (!control->isVisibleTo(&form)) {
            continue;
        }
        const auto* label = qobject_cast<const QLabel*>(control);
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        const bool text =
            (label && !label->text().isEmpty()) || (button && !button->text().isEmpty());
        if (!text || control->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored) {
            continue;
        }
        ++looked;
        SCOPED_TRACE(plainText(control->objectName()));
        if (label && label->wordWrap()) {
            EXPECT_GE(control->height(), label->heightForWidth(control->width()));
        } else {
            EXPECT_GE(control->width(), control->sizeHint().width());
            EXPECT_GE(control->height(), control->sizeHint().height());
        }
        EXPECT_TRUE(form.rect().contains(QRect(control->mapTo(&form, QPoint()), control->size())));
    }
    EXPECT_GE(looked, 4);
}

class Looks : public test::WindowTest {};

TEST_F(Looks, DialogsGrowWithTheirTexts) {
    const Installed wordy;
    const DialogParts parts{settings, clock, false, {}};
    frmSnooze snooze(parts);
    snooze.sTitle = "Snooze reminder for:  Call the bank...";
    test::whileOpen<frmSnooze>([&] { snooze.ShowModal(); },
                               [](frmSnooze& d) { expectRoomForTexts(d); });
    frmDismiss dismiss(parts);
    dismiss.sNext = "Reminder Today 14:30.";
    for (int i = 0; i < 40; ++i) {
        dismiss.sEvent += "Yearly meeting, ";
    }
    dismiss.sEvent += "Room 2";
    test::whileOpen<frmDismiss>([&] { dismiss.ShowModal(); },
                                [](frmDismiss& d) { expectRoomForTexts(d); });
}

TEST_F(Looks, TheWindowsLeastSizeHasRoomForItsTexts) {
    const Installed wordy;
    load();
    window->show();
    window->resize(1, 1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    expectRoomForTexts(*window);
}

TEST_F(Looks, TroubleCanBeReadAfterTheDesktopTurnedDark) {
    db.DBFullName = (folder / "nothing-here.RemindDB").string();
    load();
    window->show();
    const QLabel& status = child<QLabel>("lblStatus");
    ASSERT_FALSE(status.text().isEmpty());
    const auto readable = [&] {
        return contrast(status.palette().color(QPalette::WindowText),
                        status.palette().color(QPalette::Window));
    };
    EXPECT_GE(readable(), 4.5);
    const WithPalette dark(darkPalette());
    QApplication::processEvents();
    EXPECT_GE(readable(), 4.5);
}

// Between the lightest and the darkest colour that is seen there.
double contrastSeen(const QImage& picture, const QRect& at) {
    QColor light = Qt::black;
    QColor dark = Qt::white;
    for (int y = at.top(); y <= at.bottom(); ++y) {
        for (int x = at.left(); x <= at.right(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            light = contrast(colour, Qt::black) > contrast(light, Qt::black) ? colour : light;
            dark = contrast(colour, Qt::black) < contrast(dark, Qt::black) ? colour : dark;
        }
    }
    return contrast(light, dark);
}

void expectToastIn(Toast& toast, const QPalette& palette) {
    const QImage picture = toast.grab().toImage();
    const QColor corner = picture.pixelColor(2, picture.height() - 3);
    EXPECT_EQ(corner, palette.color(QPalette::Base));
    EXPECT_NE(picture.pixelColor(2, 2), corner) << "the band of the title";
    int looked = 0;
    for (const QLabel* label : toast.findChildren<QLabel*>()) {
        if (!label->text().isEmpty() && label->isVisible()) {
            ++looked;
            const QRect at(label->mapTo(&toast, QPoint()), label->size());
            EXPECT_GE(contrastSeen(picture, at), 4.5) << plainText(label->text());
        }
    }
    EXPECT_EQ(looked, 2);
}

TEST_F(Looks, AToastFollowsTheDesktop) {
    for (const bool withLink : {false, true}) {
        SCOPED_TRACE(withLink);
        Toast toast{QIcon()};
        ToastContent content;
        content.title = "Reminder";
        content.text = withLink ? "" : "Call the bank";
        content.links = {{1, "Call the bank  5 minutes (12:25)"}};
        toast.present(content, {});
        expectToastIn(toast, QApplication::palette());
        {
            const WithPalette dark(darkPalette());
            QApplication::processEvents();
            expectToastIn(toast, darkPalette());
        }
        // As some desktops' themes do it.
        for (QWidget* each : toast.findChildren<QWidget*>()) {
            each->setPalette(darkPalette());
        }
        toast.setPalette(darkPalette());
        QApplication::processEvents();
        expectToastIn(toast, darkPalette());
    }
}

// The strongest contrast to the menu's ground where an entry has its box.
double contrastOfBox(QMenu& menu) {
    menu.ensurePolished();
    menu.adjustSize();
    const QRect entry = menu.actionGeometry(menu.actions().first());
    const QImage seen = menu.grab(entry).toImage();
    const QColor ground = seen.pixelColor(seen.width() - 3, seen.height() / 2);
    double most = 1;
    for (int y = 2; y < seen.height() - 2; ++y) {
        for (int x = 2; x < seen.height(); ++x) {
            most = std::max(most, contrast(seen.pixelColor(x, y), ground));
        }
    }
    return most;
}

TEST_F(Looks, TheBoxesOfAMenuAreSeenInTheDark) {
    const WithPalette dark(darkPalette());
    QMenu menu;
    menu.addAction("Mute")->setCheckable(true);
    const double before = contrastOfBox(menu);
    applyMenuLook(menu);
    EXPECT_GE(contrastOfBox(menu), 2) << "it was " << before;
    EXPECT_GE(contrast(menu.palette().color(QPalette::Text), menu.palette().color(QPalette::Base)),
              4.5);
    load();
    emit trayMenu()->aboutToShow();
    EXPECT_EQ(trayMenu()->palette().color(QPalette::Base), menu.palette().color(QPalette::Base));
    EXPECT_EQ(trayMenu()->findChild<QMenu*>("mnuType")->font().family(), "Arial");
}

TEST_F(Looks, ScrollingLooksAtTheRowsInViewAlone) {
    int told = 0;
    GridList list(0, [&told](DateTime d) {
        ++told;
        return test::clockText(d);
    });
    ColumnWidths widths;
    Grid grid(list, widths);
    grid.InitGrid();
    list.setNow(someFriday());
    constexpr int kRows = 10'000;
    std::vector<GridRow> rows;
    rows.reserve(kRows);
    for (int i = 0; i < kRows; ++i) {
        rows.push_back(test::reminderRow("{" + std::to_string(i) + "}", "Reminder", i));
    }
    list.setRows(std::move(rows));
    grid.resize(600, 400);
    grid.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&grid));
    const int inView =
        grid.viewport()->height() / grid.visualRect(grid.model()->index(0, 0)).height() + 2;
    for (int step = 1; step <= 20; ++step) {
        told = 0;
        grid.verticalScrollBar()->setValue(step * grid.verticalScrollBar()->pageStep() * 3);
        grid.viewport()->repaint();
        EXPECT_GT(told, 0);
        EXPECT_LE(told, inView * 4);  // two columns with times, each asked for at most twice
    }
}

TEST_F(Looks, AnEmptyListSaysWhyAndIsHeard) {
    haveDatabase();
    load();
    window->show();
    for (int i = 0; i < kGridCount; ++i) {
        EXPECT_FALSE(grid(i).emptyText().isEmpty());
        EXPECT_EQ(grid(i).accessibleDescription(), grid(i).emptyText());
    }
}

}  // namespace
}  // namespace vl
