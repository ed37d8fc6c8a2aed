#include "ui/Toast.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

namespace vl {
namespace {

ToastContent withLinks(int n) {
    ToastContent content;
    content.title = "Reminders";
    for (int i = 1; i <= n; ++i) {
        content.links.push_back({i, QString("Reminder %1  15 minutes (14:30)").arg(i)});
    }
    return content;
}

// A desktop that does not tell where the icon is. Elsewhere the pointer might rest on the toast.
constexpr QRect kNowhere;

class ToastTest : public testing::Test {
protected:
    // Labels of an earlier content wait for the event loop to be deleted.
    QList<QLabel*> links() const {
        QList<QLabel*> shown;
        for (QLabel* label : toast.findChildren<QLabel*>()) {
            if (label->objectName().startsWith("lblPopupLink") && label->isVisible()) {
                shown << label;
            }
        }
        return shown;
    }

    Toast toast{QIcon()};
    QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
};

TEST_F(ToastTest, StandsInTheCornerAndLeavesTheFocusAlone) {
    toast.present(withLinks(2), kNowhere);
    EXPECT_TRUE(toast.isVisible());
    EXPECT_EQ(toast.width(), 300);
    EXPECT_TRUE(screen.contains(toast.geometry()));
    EXPECT_LT(screen.right() - toast.geometry().right(), 20);
    EXPECT_LT(screen.bottom() - toast.geometry().bottom(), 20);
    EXPECT_TRUE(toast.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(toast.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(toast.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST_F(ToastTest, StandsNextToTheIcon) {
    const QPoint icons[] = {screen.topLeft(), screen.topRight(), screen.bottomLeft()};
    for (const QPoint& icon : icons) {
        toast.present(withLinks(2), QRect(icon, QSize(1, 1)));
        const QRect shown = toast.geometry();
        EXPECT_TRUE(screen.contains(shown));
        EXPECT_EQ(shown.center().x() < screen.center().x(), icon.x() == screen.left());
        EXPECT_EQ(shown.center().y() < screen.center().y(), icon.y() == screen.top());
    }
}

TEST_F(ToastTest, NamesWhatHasNoSubject) {
    ToastContent content;
    const char* const texts[] = {"  15 minutes (14:30)", "    15 minutes (14:30)",
                                 "Tea  15 minutes (14:30)", "  Tea  15 minutes (14:30)",
                                 "no blanks"};
    const char* const shown[] = {"(no subject)  15 minutes (14:30)",
                                 "(no subject)  15 minutes (14:30)", "Tea  15 minutes (14:30)",
                                 "  Tea  15 minutes (14:30)", "no blanks"};
    for (int i = 0; i < 5; ++i) {
        content.links.push_back({i + 1, texts[i]});
    }
    toast.present(content, kNowhere);
    const QList<QLabel*> labels = links();
    ASSERT_EQ(labels.size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(labels[i]->accessibleName(), shown[i]);
        const QString said = labels[i]->text().replace(QChar::Nbsp, u' ');
        EXPECT_TRUE(said.contains(QString(shown[i]).toHtmlEscaped())) << i;
    }
}

// "20 minutes (14:30)" stands on one line, whatever is in front of it.
TEST_F(ToastTest, HowLongBeforeIsReadInOnePieceWhereALineHoldsIt) {
    const QString longTime = QString("7 hours ").repeated(20) + "(14:30)";
    ToastContent content;
    content.links = {{1, "Tea for two  20 minutes (14:30)"}, {2, "Tea for two  " + longTime}};
    toast.present(content, kNowhere);
    const QList<QLabel*> labels = links();
    ASSERT_EQ(labels.size(), 2);
    const QChar bound = QChar::Nbsp;
    EXPECT_TRUE(labels[0]->text().contains(QString("Tea for two  20") + bound + "minutes" + bound +
                                           "(14:30)"))
        << labels[0]->text().toStdString();
    EXPECT_TRUE(labels[1]->text().contains("Tea for two  " + longTime));
    EXPECT_LE(labels[1]->minimumSizeHint().width(), labels[1]->width());
}

// All of it is to be read, and nothing is cut at the edge.
TEST_F(ToastTest, AWordThatIsLongerThanTheLineGoesOnInTheNext) {
    const QString word(90, u'W');
    for (const bool bold : {false, true}) {
        ToastContent content = withLinks(1);
        content.bold = bold;
        content.title = word;
        content.links[0].text = word + "  15 minutes (14:30)";
        toast.present(content, kNowhere);
        const auto* title = toast.findChild<QLabel*>("lblPopupTitle");
        ASSERT_EQ(links().size(), 1);
        EXPECT_EQ(toast.width(), 300);
        for (const QLabel* label : {title, static_cast<const QLabel*>(links()[0])}) {
            const QFontMetrics metrics(label->font());
            const int lines = metrics.horizontalAdvance(word) / label->width();
            ASSERT_GT(lines, 2);
            EXPECT_GE(label->height(), lines * metrics.height());
            EXPECT_LE(label->minimumSizeHint().width(), label->width());
        }
        EXPECT_EQ(title->accessibleName(), word);
        EXPECT_EQ(links()[0]->accessibleName(), content.links[0].text);
    }
    ToastContent told = withLinks(0);
    told.text = word;
    toast.present(told, kNowhere);
    const auto* text = toast.findChild<QLabel*>("lblPopupText");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->accessibleName(), word);
    EXPECT_LE(text->minimumSizeHint().width(), text->width());
}

TEST_F(ToastTest, GoesToTheIconOnceItIsKnownWhereThatIs) {
    const QRect icon(screen.topLeft(), QSize(22, 22));
    toast.moveNextTo(icon);
    EXPECT_FALSE(toast.isVisible());
    toast.present(withLinks(2), kNowhere);
    const QRect before = toast.geometry();
    toast.moveNextTo(QRect());
    EXPECT_EQ(toast.geometry(), before);
    toast.moveNextTo(icon);
    EXPECT_LT(toast.geometry().bottom(), screen.center().y());
    EXPECT_EQ(toast.size(), before.size());
}

TEST_F(ToastTest, ShownAgainItIsNeverHiddenInBetween) {
    class Hidings final : public QObject {
    public:
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            count += event->type() == QEvent::Hide ? 1 : 0;
            return false;
        }
    } hidings;
    toast.present(withLinks(2), kNowhere);
    toast.installEventFilter(&hidings);
    toast.present(withLinks(7), kNowhere);
    EXPECT_EQ(links().size(), 7);
    EXPECT_EQ(hidings.count, 0);
    toast.hide();
    EXPECT_EQ(hidings.count, 1);
}

TEST_F(ToastTest, GrowsWithItsContentUpToTheScreen) {
    toast.present(withLinks(1), kNowhere);
    const int one = toast.height();
    toast.present(withLinks(5), kNowhere);
    EXPECT_GT(toast.height(), one);
    toast.present(withLinks(100), kNowhere);
    EXPECT_TRUE(screen.contains(toast.geometry()));
    QScrollBar* bar = toast.findChild<QScrollArea*>()->verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([bar] { return bar->maximum() > 0; }));
    EXPECT_EQ(links().size(), 100);
    toast.present(withLinks(1), kNowhere);
    EXPECT_EQ(toast.height(), one);
}

TEST_F(ToastTest, ItsEdgeIsTheSameAllAroundOnAnyScreen) {
    toast.present(withLinks(2), kNowhere);
    for (const int ratio : {1, 2, 3}) {
        SCOPED_TRACE(ratio);
        QImage seen(toast.size() * ratio, QImage::Format_RGB32);
        seen.setDevicePixelRatio(ratio);
        toast.render(&seen);
        const int right = seen.width() - 1;
        const int bottom = seen.height() - 1;
        const QColor edge = seen.pixelColor(0, bottom / 2);
        EXPECT_NE(edge, toast.palette().color(QPalette::Base));
        for (int i = 0; i < ratio; ++i) {
            EXPECT_EQ(seen.pixelColor(i, bottom / 2), edge) << i;
            EXPECT_EQ(seen.pixelColor(right - i, bottom / 2), edge) << i;
            EXPECT_EQ(seen.pixelColor(right / 2, i), edge) << i;
            EXPECT_EQ(seen.pixelColor(right / 2, bottom - i), edge) << i;
        }
        EXPECT_NE(seen.pixelColor(ratio, bottom / 2), edge);
        EXPECT_NE(seen.pixelColor(right / 2, bottom - ratio), edge);
    }
}

TEST_F(ToastTest, ShowsATextOfItsOwnInsteadOfLinks) {
    ToastContent content = withLinks(3);
    content.text = "Not yet";
    content.width = 250;
    toast.present(content, kNowhere);
    EXPECT_EQ(toast.width(), 250);
    EXPECT_TRUE(links().isEmpty());
    ASSERT_NE(toast.findChild<QLabel*>("lblPopupText"), nullptr);
    EXPECT_EQ(toast.findChild<QLabel*>("lblPopupText")->text(), "Not yet");
}

TEST_F(ToastTest, TellsTheTagOfAClickedLink) {
    toast.present(withLinks(3), kNowhere);
    QSignalSpy clicked(&toast, &Toast::linkClicked);
    QLabel* second = toast.findChild<QLabel*>("lblPopupLink2");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->accessibleName(), "Reminder 2  15 minutes (14:30)");
    QTest::mouseClick(second, Qt::LeftButton, {}, QPoint(10, second->height() / 2));
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_EQ(clicked.at(0).at(0).toInt(), 2);
}

TEST_F(ToastTest, TextIsNeverMarkup) {
    ToastContent content;
    content.title = "<b>title</b>";
    content.links = {{1, "<i>x</i> & y"}};
    toast.present(content, kNowhere);
    EXPECT_EQ(toast.findChild<QLabel*>("lblPopupTitle")->textFormat(), Qt::PlainText);
    EXPECT_TRUE(links().at(0)->text().contains("&lt;i&gt;x&lt;/i&gt; &amp; y"));
}

TEST_F(ToastTest, StaysWithoutADelayAndGoesWithOne) {
    QSignalSpy closed(&toast, &Toast::closed);
    toast.present(withLinks(1), kNowhere);
    EXPECT_FALSE(closed.wait(60));
    ToastContent brief = withLinks(1);
    brief.delay = std::chrono::milliseconds(20);
    toast.present(brief, kNowhere);
    EXPECT_TRUE(closed.wait(5000));
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(ToastTest, ClosedBeforeItsTimeItIsNotClosedAgain) {
    ToastContent brief = withLinks(1);
    brief.delay = std::chrono::milliseconds(20);
    QSignalSpy closed(&toast, &Toast::closed);
    toast.present(brief, kNowhere);
    toast.hide();
    EXPECT_FALSE(closed.wait(60));
}

TEST_F(ToastTest, ShownAgainUnderTheMouseItStays) {
    QSignalSpy closed(&toast, &Toast::closed);
    toast.present(withLinks(1), kNowhere);
    toast.setAttribute(Qt::WA_UnderMouse);
    ToastContent brief = withLinks(1);
    brief.delay = std::chrono::milliseconds(20);
    toast.present(brief, kNowhere);
    EXPECT_FALSE(closed.wait(60));
    toast.setAttribute(Qt::WA_UnderMouse, false);
    QEvent left(QEvent::Leave);
    QCoreApplication::sendEvent(&toast, &left);
    EXPECT_TRUE(closed.wait(5000));
}

TEST_F(ToastTest, ClosedByTheDesktopItSaysSo) {
    toast.present(withLinks(1), kNowhere);
    QSignalSpy closed(&toast, &Toast::closed);
    toast.close();
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(ToastTest, TheCrossCloses) {
    toast.present(withLinks(1), kNowhere);
    QSignalSpy closed(&toast, &Toast::closed);
    QTest::mouseClick(toast.findChild<QToolButton*>("butPopupClose"), Qt::LeftButton);
    EXPECT_EQ(closed.count(), 1);
}

}  // namespace
}  // namespace vl
