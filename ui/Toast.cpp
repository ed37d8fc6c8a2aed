#include "ui/Toast.h"

#include <algorithm>

#include <QCloseEvent>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

#include "ui/Direction.h"
#include "ui/LongWords.h"
#include "ui/QtText.h"
#include "ui/Tones.h"
#include "ui/Wording.h"

namespace vl {

namespace {

constexpr int kMargin = 12;  // around the body's lines
constexpr int kPictureSize = 16;

// Of a link's text: the time follows after two blanks.
qsizetype endOfSummary(const QString& text) { return text.lastIndexOf(QLatin1String("  ")); }

// A summary may be written from right to left; the time behind it is none of it and stays behind
// it.
QString summaryApart(const QString& text) {
    const qsizetype end = endOfSummary(text);
    return end <= 0 ? text : apart(text.left(end)) + text.mid(end);
}

// How long before, and the time: read in one piece, where a line holds it.
QString timeTogether(const QString& text, const QFontMetrics& metrics, int width) {
    const qsizetype from = endOfSummary(text) + 2;
    QString time = text.mid(from);
    time.replace(u' ', QChar::Nbsp);
    return from < 2 || metrics.horizontalAdvance(time) > width ? text : text.left(from) + time;
}

// What stands for the summary of an event that has none.
QString shownLink(const QString& text) {
    const qsizetype end = endOfSummary(text);
    return end >= 0 && isBlank(plainText(text.left(end))) ? qtText(shownSubject({})) + text.mid(end)
                                                          : text;
}

// The label would take the application's link colour, which a light palette leaves at pure blue.
QString linkHtml(const ToastLink& link, const QString& shown, const QColor& colour) {
    QString text = summaryApart(shown).toHtmlEscaped();
    text.replace(u'\n', QStringLiteral("<br>"));
    return QStringLiteral(
               "<div dir=\"ltr\"><a href=\"%1\" style=\"text-decoration:none; color:%2; "
               "white-space:pre-wrap\">%3</a></div>")
        .arg(QString::number(link.tag), colour.name(), text);
}

// A cross in the colour of the text: the style's own cannot be seen on a dark band.
QIcon crossIcon(const QColor& colour, qreal ratio) {
    QPixmap pixmap(QSize(kPictureSize, kPictureSize) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
    painter.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
    return pixmap;
}

}  // namespace

Toast::Toast(const QIcon& picture, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::WindowDoesNotAcceptFocus) {
    setObjectName("Popup1");
    setWindowTitle(tr("Reminders"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    QWidget* band = makeBand(picture);  // first: who hears it read hears the title first
    body_ = new QWidget;
    lines_ = new QVBoxLayout(body_);
    lines_->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    lines_->setSpacing(8);
    scroll_ = new QScrollArea(this);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setWidget(body_);
    for (QWidget* each : {scroll_->viewport(), body_}) {
        each->setAutoFillBackground(false);
    }
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(1, 1, 1, 1);  // the edge
    all->setSpacing(0);
    all->addWidget(band);
    all->addWidget(scroll_, 1);
    wait_.setSingleShot(true);
    connect(&wait_, &QTimer::timeout, this, &Toast::closed);
    applyTones();
}

QWidget* Toast::makeBand(const QIcon& picture) {
    band_ = new QWidget(this);
    auto* bell = new QLabel(band_);
    bell->setPixmap(picture.pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatio()));
    title_ = new QLabel(band_);
    title_->setObjectName("lblPopupTitle");
    title_->setTextFormat(Qt::PlainText);
    title_->setForegroundRole(QPalette::Text);
    title_->setWordWrap(true);
    QFont bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    close_ = new QToolButton(band_);
    close_->setObjectName("butPopupClose");
    close_->setAccessibleName(tr("Close"));
    close_->setToolTip(tr("Close"));
    close_->setAutoRaise(true);
    close_->setFocusPolicy(Qt::NoFocus);
    close_->setIconSize(QSize(kPictureSize, kPictureSize));
    connect(close_, &QToolButton::clicked, this, &Toast::closed);
    auto* row = new QHBoxLayout(band_);
    row->setContentsMargins(kMargin, 6, 6, 6);
    row->setSpacing(8);
    row->addWidget(bell, 0, Qt::AlignVCenter);
    row->addWidget(title_, 1);
    row->addWidget(close_, 0, Qt::AlignTop);
    return band_;
}

// All else is painted, or takes its colours by their roles: who changes the palette of a program
// that runs may give every widget the same one.
void Toast::applyTones() {
    close_->setIcon(crossIcon(palette().color(QPalette::Text), devicePixelRatio()));
}

void Toast::present(const ToastContent& content, const QRect& icon) {
    setUpdatesEnabled(false);
    content_ = content;
    fillTitle();
    fillBody();
    setWindowOpacity(std::clamp(content.opacity, 0.2, 1.0));
    place(content.width, icon);
    scroll_->verticalScrollBar()->setValue(0);
    setUpdatesEnabled(true);
    show();
    raise();
    startWaiting();
}

void Toast::moveNextTo(const QRect& icon) {
    if (isVisible() && !icon.isEmpty()) {
        place(content_.width, icon);
    }
}

// What the text has beside it on its line, in the band.
void Toast::fillTitle() {
    const int beside = kMargin + kPictureSize + 2 * band_->layout()->spacing() +
                       close_->sizeHint().width() + band_->layout()->contentsMargins().right() + 2;
    title_->setText(
        withLongWordsParted(content_.title, title_->fontMetrics(), content_.width - beside));
    title_->setAccessibleName(content_.title);
}

// Of many lines some room goes to the bar that scrolls them.
int Toast::lineWidth() const {
    return content_.width - 2 * kMargin - 2 - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

QFont Toast::bodyFont() const {
    QFont font = body_->font();
    font.setBold(content_.bold);
    return font;
}

void Toast::fillBody() {
    const QFontMetrics metrics(bodyFont());
    const auto parted = [&](const QString& text) {
        return withLongWordsParted(text, metrics, lineWidth());
    };
    // A link may just be telling us that it was clicked.
    while (QLayoutItem* item = lines_->takeAt(0)) {
        if (QWidget* label = item->widget()) {
            label->hide();
            label->deleteLater();
        }
        delete item;
    }
    const QColor colour = Tones(palette()).accent;
    if (!content_.text.isEmpty()) {
        auto* label = new QLabel(body_);
        label->setObjectName("lblPopupText");
        label->setTextFormat(Qt::PlainText);
        label->setText(parted(content_.text));
        label->setAccessibleName(content_.text);
        addLine(label);
    } else {
        for (const ToastLink& link : content_.links) {
            auto* label = new QLabel(body_);
            label->setObjectName("lblPopupLink" + QString::number(link.tag));
            label->setTextFormat(Qt::RichText);
            const QString shown = shownLink(link.text);
            const QString together = timeTogether(shown, metrics, lineWidth());
            label->setText(linkHtml(link, parted(together), colour));
            label->setAccessibleName(shown);
            label->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
            connect(label, &QLabel::linkActivated, this,
                    [this](const QString& tag) { emit linkClicked(tag.toInt()); });
            addLine(label);
        }
    }
}

void Toast::addLine(QLabel* label) {
    label->setFont(bodyFont());
    label->setForegroundRole(QPalette::Text);
    label->setWordWrap(true);
    lines_->addWidget(label);
    label->show();
}

void Toast::place(int width, const QRect& icon) {
    const ToastPlace to = toastPlace(icon, toastScreens());
    const int w = std::min(width, to.room.width());
    ensurePolished();
    band_->layout()->invalidate();
    lines_->invalidate();
    const int content =
        band_->layout()->totalHeightForWidth(w - 2) + lines_->totalHeightForWidth(w - 2) + 2;
    const int h = std::min(content, to.room.height());
    setFixedSize(w, h);
    const bool atRight = to.corner == Qt::BottomRightCorner || to.corner == Qt::TopRightCorner;
    const bool atBottom = to.corner == Qt::BottomRightCorner || to.corner == Qt::BottomLeftCorner;
    move(atRight ? to.room.right() + 1 - w : to.room.left(),
         atBottom ? to.room.bottom() + 1 - h : to.room.top());
    if (!isVisible() && windowHandle()) {
        // Asks for its place also where it stood there before: else the window manager has one.
        windowHandle()->setPosition(windowHandle()->position());
    }
}

void Toast::startWaiting() {
    if (content_.delay && !underMouse()) {
        wait_.start(*content_.delay);
    } else {
        wait_.stop();
    }
}

void Toast::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor base = palette().color(QPalette::Base);
    // The edge first: a line drawn around would lie beside the last pixels of a scaled screen.
    painter.fillRect(rect(), mixed(palette().color(QPalette::Text), base, 0.3));
    painter.fillRect(rect().adjusted(1, 1, -1, -1), base);
    painter.fillRect(band_->geometry(), mixed(palette().color(QPalette::Highlight), base, 0.16));
}

void Toast::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && lines_) {
        applyTones();
        fillBody();
    }
}

void Toast::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    wait_.stop();
}

void Toast::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    if (isVisible()) {
        startWaiting();
    }
}

// What is closed is not closed once more when its time is over.
void Toast::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    wait_.stop();
}

// Closed by the window manager: whoever owns the toast hides it, as by its own button.
void Toast::closeEvent(QCloseEvent* event) {
    event->ignore();
    emit closed();
}

}  // namespace vl
