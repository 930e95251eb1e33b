// A paper that keeps the words painted on it: what stands where, in which colour.
#pragma once

#include <QColor>
#include <QFontMetrics>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPointF>

#include <functional>
#include <string>
#include <vector>

namespace ombrix {

struct PaintedText {
    std::string text;
    QPointF middle;
    QColor colour;
};

class TextPaper : public QPaintEngine, public QPaintDevice
{
public:
    TextPaper() : QPaintEngine(AllFeatures) {}
    std::vector<PaintedText> texts;

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &state) override { m_colour = state.pen().color(); }
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    void drawPath(const QPainterPath &) override {}
    void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF &base, const QTextItem &item) override
    {
        const QPointF middle(item.width() / 2, (item.descent() - item.ascent()) / 2);
        texts.push_back({item.text().toStdString(), base + middle, m_colour});
    }
    QPaintEngine::Type type() const override { return QPaintEngine::User; }
    QPaintEngine *paintEngine() const override { return const_cast<TextPaper *>(this); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return 1000;
        case PdmDevicePixelRatio:
        case PdmNumColors:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;
        }
    }

private:
    QColor m_colour;
};

inline std::vector<PaintedText> TextsPaintedBy(const std::function<void(QPainter &)> &paint, const QFont &font)
{
    TextPaper paper;
    QPainter painter(&paper);
    painter.setFont(font);
    paint(painter);
    painter.end();
    return paper.texts;
}

}  // namespace ombrix
