#include "ui/frmDismiss.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ui/HelpNumbers.h"
#include "ui/InputWatch.h"
#include "ui/LongWords.h"
#include "ui/Named.h"
#include "ui/QtText.h"

namespace vl {

frmDismiss::frmDismiss(DialogParts parts, QWidget* parent)
    : AskingDialog(std::move(parts), parent) {
    build();
    wire();
}

void frmDismiss::build() {
    setObjectName("frmDismiss");
    setWindowTitle(tr("Dismiss Reminder..."));
    lblEvent = named(new QLabel(tr("Event and Next Reminder"), this), "lblEvent");
    lblEvent->setTextFormat(Qt::PlainText);
    lblEvent->setWordWrap(true);
    // Not of the dialog: it would no longer grow with texts that need more.
    lblEvent->setMinimumWidth(fontMetrics().averageCharWidth() * 59);
    auto* group = named(new QGroupBox(tr("Dismiss:"), this), "frmDismissWhat");
    radThisOnly = named(new QRadioButton(tr("&This reminder"), group), "radThisOnly");
    radAfter =
        named(new QRadioButton(tr("All reminders &except those after the event (if any)"), group),
              "radAfter");
    radAll = named(new QRadioButton(tr("&All reminders"), group), "radAll");
    radDeleteItem = named(new QRadioButton(tr("Dismiss all reminders and DELETE item"), group),
                          "radDeleteItem");
    auto* choices = new QVBoxLayout;
    group->setLayout(choices);
    for (QRadioButton* choice : {radThisOnly, radAfter, radAll, radDeleteItem}) {
        choices->addWidget(choice);
    }
    chkDone = named(new QCheckBox(tr("Mark item as &Done"), this), "chkDone");
    butOK = named(new QPushButton(tr("&OK"), this), "butOK");
    butCancel = named(new QPushButton(tr("&Cancel"), this), "butCancel");
    QFrame* frmButtons = makeButtonGroup(*this, *butOK, *butCancel);
    QLabel* lblF1 = makeHelpLink(*this, [this] { DoKeyDown(kKeyF1); });

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblF1);
    bottom->addStretch(1);
    bottom->addWidget(frmButtons);
    auto* all = new QVBoxLayout(this);
    all->setSpacing(10);
    all->addWidget(lblEvent);
    all->addWidget(group);
    all->addWidget(chkDone);
    all->addStretch(1);
    all->addLayout(bottom);
    setTabOrders({radThisOnly, radAfter, radAll, radDeleteItem, chkDone, butOK, butCancel, lblF1});
}

void frmDismiss::wire() {
    connect(&TimerUpdate, &QTimer::timeout, this, &frmDismiss::UpdateUI);
    // Also when another choice takes its place: a second is long to look at a grey box.
    connect(radDeleteItem, &QRadioButton::toggled, this, &frmDismiss::UpdateUI);
    connect(radDeleteItem, &QRadioButton::clicked, this, &frmDismiss::UpdateUI);
    connect(butOK, &QPushButton::clicked, this, &frmDismiss::butOK_Click);
    connect(butCancel, &QPushButton::clicked, this, &frmDismiss::butCancel_Click);
    // Or Enter, right after the letter, would find the old choice.
    for (QAbstractButton* choice : std::initializer_list<QAbstractButton*>{
             radThisOnly, radAfter, radAll, radDeleteItem, chkDone}) {
        clickAtOnce(*choice);
    }
    previewKeys(*this, {kKeyF1, kKeyEnter}, [this](int code) { DoKeyDown(code); });
}

void frmDismiss::load() {
    if (!sTitle.empty()) {
        setWindowTitle(qtText(sTitle));
    }
    const QString text = qtText(sNext + " Event: " + sEvent);
    lblEvent->setText(withLongWordsParted(text, lblEvent->fontMetrics(), lblEvent->minimumWidth()));
    lblEvent->setAccessibleName(text);
    radThisOnly->setChecked(true);
    radThisOnly->setFocus();
    settle();
    UpdateUI();
}

void frmDismiss::UpdateUI() { chkDone->setEnabled(!radDeleteItem->isChecked()); }

frmDismiss::Choice frmDismiss::choice() const {
    if (radDeleteItem->isChecked()) {
        return Choice::DeleteItem;
    }
    if (radAll->isChecked()) {
        return Choice::All;
    }
    return radAfter->isChecked() ? Choice::After : Choice::ThisOnly;
}

bool frmDismiss::markDone() const { return chkDone->isChecked() && !radDeleteItem->isChecked(); }

void frmDismiss::butOK_Click() { answer(); }

void frmDismiss::DoKeyDown(int KeyCode) {
    if (KeyCode == kKeyF1 && parts_.showHelp) {
        parts_.showHelp(kHelpDismiss);
    } else if (KeyCode == kKeyEnter) {
        butOK_Click();
    }
}

}  // namespace vl
