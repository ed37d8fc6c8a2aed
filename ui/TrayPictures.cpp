#include "ui/TrayPictures.h"

#include <algorithm>

#include <QIconEngine>
#include <QImageReader>
#include <QMap>
#include <QPainter>
#include <QPixmap>
#include <QString>

// Of a static library: nobody else would take the resources in. It has to stand outside of a
// namespace.
static void takeInResources() { Q_INIT_RESOURCE(icons); }

namespace vl {

namespace {

constexpr int kSizes[] = {16, 20, 22, 24, 32, 48, 64};

/// A picture of data/icons, each size read when it is first asked for: hidden, the program shows
/// one of them. Qt's own engine reads all at once.
class PictureEngine final : public QIconEngine {
public:
    explicit PictureEngine(QString name) : name_(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const QPixmap picture =
            pixmap(rect.size() * painter->device()->devicePixelRatio(), mode, state);
        painter->drawPixmap(rect, picture);
    }

    // A size that is not drawn is scaled down from the next larger one.
    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int wanted = std::min(size.width(), size.height());
        const auto* next = std::find_if(std::begin(kSizes), std::end(kSizes),
                                        [wanted](int each) { return each >= wanted; });
        const int drawn = next == std::end(kSizes) ? *std::rbegin(kSizes) : *next;
        const QPixmap& picture = read(drawn);
        return drawn <= wanted
                   ? picture
                   : picture.scaled(wanted, wanted, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int side = std::min({size.width(), size.height(), *std::rbegin(kSizes)});
        return {side, side};
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (const int size : kSizes) {
            sizes.append(QSize(size, size));
        }
        return sizes;
    }

    QIconEngine* clone() const override { return new PictureEngine(*this); }
    bool isNull() override { return false; }

private:
    const QPixmap& read(int size) {
        QPixmap& picture = read_[size];
        if (picture.isNull()) {
            const QString file = QStringLiteral(":/icons/%1-%2.png").arg(name_).arg(size);
            QImageReader reader(file, "PNG");
            reader.setAutoDetectImageFormat(false);  // or every plugin is loaded and asked
            picture = QPixmap::fromImage(reader.read());
        }
        return picture;
    }

    QString name_;
    QMap<int, QPixmap> read_;
};

QIcon picture(const char* name) {
    takeInResources();
    return QIcon(new PictureEngine(QString::fromLatin1(name)));
}

}  // namespace

QIcon quietPicture() { return picture("tray"); }
QIcon newPicture() { return picture("tray-new"); }
QIcon programPicture() { return picture("vlreminders"); }

}  // namespace vl
