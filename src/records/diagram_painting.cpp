#include "records/diagram_painting.h"

#include "platform/fault.h"

#include <QFontInfo>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ombrix {
namespace {

constexpr double kSmallestPoints = 9;

}  // namespace

QPalette PaperPalette()
{
    const Ink ink;
    QPalette palette;
    for (const auto role : {QPalette::Window, QPalette::Base})
        palette.setColor(role, ink.paper);
    for (const auto role : {QPalette::WindowText, QPalette::Text})
        palette.setColor(role, ink.line);
    return palette;
}

QFont ReadableFont(const QFont &font)
{
    QFont readable = font;
    if (QFontInfo(font).pointSizeF() < kSmallestPoints)
        readable.setPointSizeF(kSmallestPoints);
    return readable;
}

void PaintScrew(QPainter &painter, const QRectF &place, bool used, const QColor &colour)
{
    const Ink ink;
    painter.setPen(QPen(colour, kThin));
    painter.setBrush(used ? colour : ink.paper);
    painter.drawEllipse(place);
    painter.setPen(QPen(used ? ink.paper : colour, kThin));
    const QPointF slot(place.width() / 4, -place.height() / 4);
    painter.drawLine(place.center() - slot, place.center() + slot);
}

Canvas::Canvas(QWidget *parent, const QString &name) : QWidget(parent)
{
    setObjectName(name);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void Canvas::Show(const QSize &picture, int room, std::function<void(QPainter &)> paint)
{
    m_picture = picture;
    m_room = room;
    m_paint = std::move(paint);
    for (const Placed &placed : m_placed)
        Arrange(placed);
    updateGeometry();
    update();
}

void Canvas::Place(QLabel *label, const QRectF &place)
{
    auto placed =
        std::find_if(m_placed.begin(), m_placed.end(), [label](const Placed &other) { return other.label == label; });
    if (placed == m_placed.end())
        placed = m_placed.insert(placed, {label, place});
    placed->place = place;
    Arrange(*placed);
}

double Canvas::Zoom() const
{
    return std::min(width() / static_cast<double>(m_room), height() / static_cast<double>(m_picture.height()));
}

QPointF Canvas::Shown(const QPointF &point) const
{
    return QPointF((width() - m_picture.width() * Zoom()) / 2, 0) + point * Zoom();
}

QSize Canvas::sizeHint() const
{
    const int wide = static_cast<int>(m_room * kLargestZoom);
    return QSize(wide, heightForWidth(wide));
}

QSize Canvas::minimumSizeHint() const
{
    return QSize(m_room, m_picture.height());
}

int Canvas::heightForWidth(int width) const
{
    return static_cast<int>(std::ceil(m_picture.height() * static_cast<double>(width) / m_room));
}

void Canvas::Arrange(const Placed &placed) const
{
    QFont large = font();
    large.setBold(placed.label->font().bold());
    large.setPointSizeF(std::max(1.0, QFontInfo(font()).pointSizeF() * Zoom()));
    placed.label->setFont(large);
    placed.label->setGeometry(QRectF(Shown(placed.place.topLeft()), placed.place.size() * Zoom()).toAlignedRect());
}

void Canvas::paintEvent(QPaintEvent *)
{
    RunHandler([this] {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(font());
        painter.translate(Shown(QPointF()));
        painter.scale(Zoom(), Zoom());
        if (m_paint)
            m_paint(painter);
    });
}

void Canvas::resizeEvent(QResizeEvent *)
{
    RunHandler([this] {
        for (const Placed &placed : m_placed)
            Arrange(placed);
    });
}

}  // namespace ombrix
