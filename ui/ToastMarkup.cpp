#include "ui/ToastMarkup.h"

#include <algorithm>

#include <QXmlStreamReader>

namespace vl {

namespace {

// Characters that a summary may hold and XML may not.
QString withoutControls(QString text) {
    const auto forbidden = [](QChar c) {
        return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c == QChar(0xfffe) ||
               c == QChar(0xffff);
    };
    std::replace_if(text.begin(), text.end(), forbidden, QChar(u' '));
    return text;
}

// From behind the start of a hyperlink to its end.
ToastLink readLink(QXmlStreamReader& xml) {
    ToastLink link;
    link.tag = xml.attributes().value(QLatin1String("Tag")).toInt();
    while (!xml.atEnd() && !(xml.isEndElement() && xml.name() == u"Hyperlink")) {
        xml.readNext();
        if (xml.isCharacters()) {
            link.text += xml.text();
        } else if (xml.isStartElement() && xml.name() == u"LineBreak") {
            link.text += u'\n';
        }
    }
    return link;
}

}  // namespace

std::vector<ToastLink> readToastMarkup(const QString& markup) {
    std::vector<ToastLink> links;
    QXmlStreamReader xml(withoutControls(markup));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"Hyperlink") {
            ToastLink link = readLink(xml);
            if (!xml.hasError()) {
                links.push_back(std::move(link));
            }
        }
    }
    return links;
}

}  // namespace vl
