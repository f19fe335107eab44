#pragma once
// What the customer has drawn, as a picture the size of the screen. No window.

#include <cairo.h>

#include <memory>
#include <vector>

enum class Tool { cursor, pen, line, rectangle, ellipse, eraser };

struct Point {
    double x, y;
};

/// In pixels.
struct Size {
    int width, height;
};

/// Edges of an area, in pixels.
struct Area {
    double left, top, right, bottom;
};

/// One stroke, from the press of the button to its release.
struct Stroke {
    Tool tool;
    std::vector<Point> points; ///< pen and eraser: the whole way; else start and present end
};

/// Continues a stroke to a point.
void extendStroke(Stroke &stroke, Point point);
/// The area that a stroke covers.
Area strokeArea(const Stroke &stroke);
/// Paints a stroke; an eraser takes away what is there.
void paintStroke(cairo_t *cr, const Stroke &stroke);

/// The finished strokes.
class Drawing
{
public:
    Drawing(int width, int height);

    void add(const Stroke &stroke);
    void clear();
    cairo_surface_t *picture() const { return m_picture.get(); }

private:
    struct SurfaceDeleter {
        void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
    };
    std::unique_ptr<cairo_surface_t, SurfaceDeleter> m_picture;
};
