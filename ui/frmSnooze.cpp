#include "ui/frmSnooze.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/Settings.h"
#include "app/TimeText.h"
#include "base/Clock.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/SnoozeText.h"
#include "ui/HelpNumbers.h"
#include "ui/Named.h"
#include "ui/QtText.h"
#include "ui/SettingNames.h"
#include "ui/Tones.h"
#include "ui/Wording.h"

namespace vl {

namespace {

constexpr auto kFirstSnooze = "15m";

// A line break in a subject would be two boxes in the frame.
QString onOneLine(QString text) {
    return text.replace("\r\n", " ").replace('\r', ' ').replace('\n', ' ');
}

std::string trimmedText(const QComboBox& list) {
    return std::string(text::trimBlanks(plainText(list.currentText())));
}

}  // namespace

frmSnooze::frmSnooze(DialogParts parts, QWidget* parent) : AskingDialog(std::move(parts), parent) {
    build();
    wire();
}

void frmSnooze::build() {
    setObjectName("frmSnooze");
    setWindowTitle(tr("Snooze Reminder..."));
    auto* lblSnooze = named(new QLabel(tr("&Remind again in"), this), "lblSnooze");
    cboSnooze = named(new QComboBox(this), "cboSnooze", "Remind again in");
    cboSnooze->setEditable(true);
    // Not of the dialog: it would no longer grow with texts that need more.
    cboSnooze->setMinimumWidth(fontMetrics().averageCharWidth() * 42);
    cboSnooze->setInsertPolicy(QComboBox::NoInsert);
    cboSnooze->setMaxVisibleItems(16);
    // What is typed counts as it stands: "1" must not become "15m".
    cboSnooze->setCompleter(nullptr);
    const QString hint = tr("Format: 5m, 3h, 1d, 1w / for an email: add (e) i.e. 3d (e)");
    cboSnooze->setToolTip(hint);
    cboSnooze->setAccessibleDescription(hint);
    cboSnooze->lineEdit()->setAccessibleName(cboSnooze->accessibleName());
    cboSnooze->lineEdit()->setPlaceholderText(hint);
    lblSnooze->setBuddy(cboSnooze);
    lblHint = named(new QLabel(hint, this), "lblHint");
    lblHint->setTextFormat(Qt::PlainText);
    lblUntil = named(new QLabel(this), "lblUntil");
    lblUntil->setWordWrap(true);
    lblTime = named(new QLabel(tr("Current Time"), this), "lblTime");
    butSnooze = named(new QPushButton(tr("&Snooze"), this), "butSnooze");
    butCancel = named(new QPushButton(tr("&Cancel"), this), "butCancel");
    QFrame* frmButtons = makeButtonGroup(*this, *butSnooze, *butCancel);
    QLabel* lblF1 = makeHelpLink(*this, [this] { DoKeyDown(kKeyF1); });

    auto* choice = new QGridLayout;
    choice->setHorizontalSpacing(12);
    choice->setVerticalSpacing(8);
    choice->addWidget(lblSnooze, 0, 0);
    choice->addWidget(cboSnooze, 0, 1);
    choice->addWidget(lblHint, 1, 1);
    choice->addWidget(lblTime, 2, 0, Qt::AlignTop);
    choice->addWidget(lblUntil, 2, 1, Qt::AlignTop);
    choice->setColumnStretch(1, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblF1);
    bottom->addStretch(1);
    bottom->addWidget(frmButtons);
    auto* all = new QVBoxLayout(this);
    all->setSpacing(14);
    all->addLayout(choice);
    all->addStretch(1);
    all->addLayout(bottom);
    setTabOrders({cboSnooze, butSnooze, butCancel, lblF1});
}

void frmSnooze::wire() {
    connect(&TimerUpdate, &QTimer::timeout, this, &frmSnooze::TimerUpdate_Tick);
    connect(butSnooze, &QPushButton::clicked, this, &frmSnooze::doSnooze);
    connect(butCancel, &QPushButton::clicked, this, &frmSnooze::butCancel_Click);
    connect(cboSnooze, &QComboBox::editTextChanged, this, &frmSnooze::showUntil);
    previewKeys(*this, {kKeyF1, kKeyF2, kKeyEnter}, [this](int code) { DoKeyDown(code); });
    // The open list is a window of its own and gets the keys.
    cboSnooze->view()->installEventFilter(this);
}

void frmSnooze::load() {
    FillCBO();
    sSnooze = parts_.settings.GetIni(kRemindersSection, kSnoozeKey, kFirstSnooze);
    const QString offered = u' ' + qtText(sSnooze);
    cboSnooze->setCurrentIndex(cboSnooze->findText(offered));  // what Down and F2 go on from
    cboSnooze->setEditText(offered);
    setWindowTitle(onOneLine(qtText(sTitle)));
    lblTime->setText(qtText(shortTimeText(parts_.clock.now())));
    settle();
    showUntil();
    cboSnooze->setFocus();
    cboSnooze->lineEdit()->selectAll();
}

void frmSnooze::FillCBO() {
    for (const char* choice : snoozeChoices()) {
        cboSnooze->addItem(u' ' + QString(choice));
    }
}

void frmSnooze::TimerUpdate_Tick() {
    const ErrScope scope;
    attempt([&] { lblTime->setText("Time: " + qtText(shortTimeText(parts_.clock.now()))); });
    showUntil();
}

// Says what the text means before it is too late; what is silently no time is told here. Colours
// are those of the desktop as it is now.
void frmSnooze::showUntil() {
    const ErrScope scope;
    attempt([&] {
        const DateTime now = parts_.clock.now();
        const auto until = snoozeTime(trimmedText(*cboSnooze), now);
        const auto inWords = [](DateTime d) { return shortTimeText(d); };
        lblUntil->setText(until
                              ? tr("Reminds %1").arg(qtText(momentText(*until, true, now, inWords)))
                              : tr("This is no time ahead; nothing would change"));
        QPalette tone;
        if (!until) {
            tone.setColor(QPalette::WindowText, Tones(palette(), QPalette::Window).warm);
        }
        lblUntil->setPalette(tone);
        QPalette quiet;
        quiet.setColor(QPalette::WindowText, Tones(palette(), QPalette::Window).dimmed);
        lblHint->setPalette(quiet);
    });
}

void frmSnooze::doSnooze() {
    sSnooze = trimmedText(*cboSnooze);
    answer();
}

void frmSnooze::DoKeyDown(int KeyCode) {
    switch (KeyCode) {
        case kKeyF1:
            if (parts_.showHelp) {
                parts_.showHelp(kHelpSnooze);
            }
            break;
        case kKeyF2:
            if (cboSnooze->view()->isVisible()) {
                cboSnooze->hidePopup();
            } else {
                cboSnooze->showPopup();
            }
            break;
        case kKeyEnter:
            doSnooze();
            break;
        default:
            break;
    }
}

bool frmSnooze::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_F1 || key == Qt::Key_F2) {
            DoKeyDown(key == Qt::Key_F1 ? kKeyF1 : kKeyF2);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace vl
