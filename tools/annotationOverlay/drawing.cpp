// Strokes on a transparent picture.

#include "tools/annotationOverlay/drawing.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double penWidth = 4;
constexpr double eraserWidth = 28;
constexpr double red = 0.90, green = 0.22, blue = 0.21;

bool followsPointer(Tool tool)
{
    return tool == Tool::pen || tool == Tool::eraser;
}

double widthOf(Tool tool)
{
    return tool == Tool::eraser ? eraserWidth : penWidth;
}

void tracePoints(cairo_t *cr, const Stroke &stroke)
{
    for (const Point &point : stroke.points)
        cairo_line_to(cr, point.x, point.y);
    if (stroke.points.size() == 1) // a dot
        cairo_line_to(cr, stroke.points.front().x, stroke.points.front().y);
}

void traceRectangle(cairo_t *cr, Point start, Point end)
{
    cairo_rectangle(cr, start.x, start.y, end.x - start.x, end.y - start.y);
}

/// The ellipse that fills the rectangle of two corners.
void traceEllipse(cairo_t *cr, Point start, Point end)
{
    const double halfWidth = std::abs(end.x - start.x) / 2, halfHeight = std::abs(end.y - start.y) / 2;
    if (halfWidth < 1 || halfHeight < 1)
        return;
    cairo_save(cr);
    cairo_translate(cr, (start.x + end.x) / 2, (start.y + end.y) / 2);
    cairo_scale(cr, halfWidth, halfHeight);
    cairo_arc(cr, 0, 0, 1, 0, 2 * M_PI);
    cairo_restore(cr);
}

void trace(cairo_t *cr, const Stroke &stroke)
{
    if (stroke.tool == Tool::rectangle)
        traceRectangle(cr, stroke.points.front(), stroke.points.back());
    else if (stroke.tool == Tool::ellipse)
        traceEllipse(cr, stroke.points.front(), stroke.points.back());
    else
        tracePoints(cr, stroke);
}

} // namespace

void extendStroke(Stroke &stroke, Point point)
{
    if (!followsPointer(stroke.tool) && stroke.points.size() > 1)
        stroke.points.pop_back();
    stroke.points.push_back(point);
}

Area strokeArea(const Stroke &stroke)
{
    const double margin = widthOf(stroke.tool);
    const Point first = stroke.points.front();
    Area area = {first.x, first.y, first.x, first.y};
    for (const Point &point : stroke.points)
        area = {std::min(area.left, point.x), std::min(area.top, point.y), std::max(area.right, point.x),
                std::max(area.bottom, point.y)};
    return {area.left - margin, area.top - margin, area.right + margin, area.bottom + margin};
}

void paintStroke(cairo_t *cr, const Stroke &stroke)
{
    cairo_save(cr);
    cairo_set_line_width(cr, widthOf(stroke.tool));
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_source_rgb(cr, red, green, blue);
    if (stroke.tool == Tool::eraser)
        cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_new_path(cr);
    trace(cr, stroke);
    cairo_stroke(cr);
    cairo_restore(cr);
}

Drawing::Drawing(int width, int height) : m_picture(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)) {}

void Drawing::add(const Stroke &stroke)
{
    cairo_t *const cr = cairo_create(m_picture.get());
    paintStroke(cr, stroke);
    cairo_destroy(cr);
}

void Drawing::clear()
{
    cairo_t *const cr = cairo_create(m_picture.get());
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr);
    cairo_destroy(cr);
}
