// A window is drawn without its letters (and pictures), so that each is compared with what is really behind it:
// gradients, other widgets and paper included. Letters are measured by their nominal colour, since a thin stroke never
// reaches it on the screen.

#include "tests/ui/main/contrastMeasure.h"

#include "tests/support/widgetSearch.h"
#include "tests/ui/main/textLosses.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <ostream>

namespace
{

constexpr double textRatio = 4.5, largeTextRatio = 3, pictureRatio = 3;
constexpr double largePt = 18, largeBoldPt = 14, ptPerPx = 0.75;

struct FreeSurface {
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
};
struct FreeCairo {
    void operator()(cairo_t *cairo) const { cairo_destroy(cairo); }
};

/// What a window looks like, point by point.
class Drawing
{
public:
    explicit Drawing(GtkWidget *window)
        : m_surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, gtk_widget_get_allocated_width(window),
                                               gtk_widget_get_allocated_height(window)))
    {
        const std::unique_ptr<cairo_t, FreeCairo> cairo(cairo_create(m_surface.get()));
        gtk_widget_draw(window, cairo.get());
        cairo_surface_flush(m_surface.get());
    }
    /// The points of a rectangle, row by row, as far as it is inside of the window.
    std::vector<guint32> points(const Box &box) const
    {
        const int width = cairo_image_surface_get_width(m_surface.get());
        const int height = cairo_image_surface_get_height(m_surface.get());
        const int stride = cairo_image_surface_get_stride(m_surface.get());
        const unsigned char *const data = cairo_image_surface_get_data(m_surface.get());
        std::vector<guint32> found;
        for (int y = std::max(box.y, 0); y < std::min(box.y + box.height, height); y++) {
            const auto *const row = reinterpret_cast<const guint32 *>(data + y * stride);
            for (int x = std::max(box.x, 0); x < std::min(box.x + box.width, width); x++)
                found.push_back(row[x] & 0xffffff);
        }
        return found;
    }

private:
    std::unique_ptr<cairo_surface_t, FreeSurface> m_surface;
};

/// Widgets that are not drawn as long as this lives.
class Hidden
{
public:
    explicit Hidden(std::vector<GtkWidget *> widgets) : m_widgets(std::move(widgets))
    {
        for (GtkWidget *const widget : m_widgets) {
            m_opacities.push_back(gtk_widget_get_opacity(widget));
            gtk_widget_set_opacity(widget, 0);
        }
    }
    ~Hidden()
    {
        for (size_t index = 0; index < m_widgets.size(); index++)
            gtk_widget_set_opacity(m_widgets[index], m_opacities[index]);
    }
    Hidden(const Hidden &) = delete;
    Hidden &operator=(const Hidden &) = delete;

private:
    std::vector<GtkWidget *> m_widgets;
    std::vector<double> m_opacities;
};

Drawing drawWithout(const std::vector<GtkWidget *> &widgets, GtkWidget *window)
{
    const Hidden hidden(widgets);
    return Drawing(window);
}

Colour colourOf(guint32 point)
{
    return {(point >> 16 & 255) / 255.0, (point >> 8 & 255) / 255.0, (point & 255) / 255.0};
}

Colour over(const GdkRGBA &front, double opacity, const Colour &ground)
{
    const double part = front.alpha * opacity;
    return {front.red * part + ground.red * (1 - part), front.green * part + ground.green * (1 - part),
            front.blue * part + ground.blue * (1 - part)};
}

double luminanceOf(const Colour &colour)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}

/// A rectangle of a widget's own window in the coordinates of the window around it.
Box inWindow(Box box, GtkWidget *widget)
{
    const Box room = boxOfRoom(widget);
    gtk_widget_translate_coordinates(widget, gtk_widget_get_toplevel(widget), box.x - room.x, box.y - room.y, &box.x,
                                     &box.y);
    return box;
}

/// Of the widget and everything that it is in.
double opacityOf(GtkWidget *widget)
{
    double opacity = 1;
    for (; widget; widget = gtk_widget_get_parent(widget)) {
        GtkStyleContext *const style = gtk_widget_get_style_context(widget);
        double styled = 1;
        gtk_style_context_get(style, gtk_style_context_get_state(style), "opacity", &styled, nullptr);
        opacity *= styled * gtk_widget_get_opacity(widget);
    }
    return opacity;
}

/// Colour of a label's letters: a link's or a mark's own, else the style's.
GdkRGBA lettersOf(GtkWidget *label)
{
    GtkStyleContext *const style = gtk_widget_get_style_context(label);
    GdkRGBA colour = {};
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &colour);
    PangoAttrList *const marks = pango_layout_get_attributes(gtk_label_get_layout(GTK_LABEL(label)));
    if (!marks)
        return colour;
    PangoAttrIterator *const place = pango_attr_list_get_iterator(marks);
    do {
        if (const PangoAttribute *const mark = pango_attr_iterator_get(place, PANGO_ATTR_FOREGROUND)) {
            const PangoColor &own = reinterpret_cast<const PangoAttrColor *>(mark)->color;
            colour = {own.red / 65535.0, own.green / 65535.0, own.blue / 65535.0, 1};
        }
    } while (pango_attr_iterator_next(place));
    pango_attr_iterator_destroy(place);
    return colour;
}

double wantedFor(const PangoFontDescription *font)
{
    const double size = pango_font_description_get_size(font) / double(PANGO_SCALE);
    const double pt = pango_font_description_get_size_is_absolute(font) ? size * ptPerPx : size;
    const bool isBold = pango_font_description_get_weight(font) >= PANGO_WEIGHT_BOLD;
    return pt >= (isBold ? largeBoldPt : largePt) ? largeTextRatio : textRatio;
}

double wantedFor(GtkWidget *label)
{
    GtkStyleContext *const style = gtk_widget_get_style_context(label);
    PangoFontDescription *font = nullptr;
    gtk_style_context_get(style, gtk_style_context_get_state(style), "font", &font, nullptr);
    const double wanted = wantedFor(font);
    pango_font_description_free(font);
    return wanted;
}

/// Where letters and ground are closest.
Reading readLabel(GtkWidget *label, const Drawing &grounds)
{
    const GdkRGBA letters = lettersOf(label);
    const double opacity = opacityOf(label);
    Reading reading = {"\"" + shownText(label) + "\"", {}, {}, 22, wantedFor(label)};
    std::vector<guint32> points = grounds.points(inWindow(boxOfLetters(GTK_LABEL(label)), label));
    std::sort(points.begin(), points.end());
    points.erase(std::unique(points.begin(), points.end()), points.end());
    for (const guint32 point : points) {
        const Colour ground = colourOf(point), front = over(letters, opacity, ground);
        if (const double ratio = contrastOf(front, ground); ratio < reading.ratio)
            reading = {reading.what, front, ground, ratio, reading.wanted};
    }
    return reading;
}

guint32 mostFrequent(const std::vector<guint32> &points)
{
    std::map<guint32, int> counts;
    for (const guint32 point : points)
        counts[point]++;
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto &one, const auto &other) { return one.second < other.second; });
    return most == counts.end() ? 0 : most->first;
}

/// The line that a place of a text view is in, in the coordinates of the window.
Box lineAt(GtkTextView *view, const GtkTextIter *place, GtkWidget *window)
{
    GdkRectangle letter = {};
    gtk_text_view_get_iter_location(view, place, &letter);
    int x = 0, y = 0, left = 0, top = 0;
    gtk_text_view_buffer_to_window_coords(view, GTK_TEXT_WINDOW_WIDGET, letter.x, letter.y, &x, &y);
    gtk_widget_translate_coordinates(GTK_WIDGET(view), window, x, y, &left, &top);
    return {left, top, std::max(letter.width, 8), letter.height};
}

/// Colour of the letters at a place of a text view: that of the foremost tag that has one, else the style's.
GdkRGBA lettersAt(GtkTextView *view, const GtkTextIter *place)
{
    GtkStyleContext *const style = gtk_widget_get_style_context(GTK_WIDGET(view));
    GdkRGBA letters = {};
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &letters);
    g_autoptr(GSList) tags = gtk_text_iter_get_tags(place);
    for (const GSList *each = tags; each; each = each->next) {
        gboolean isColoured = FALSE;
        g_autoptr(GdkRGBA) own = nullptr;
        g_object_get(each->data, "foreground-set", &isColoured, "foreground-rgba", &own, nullptr);
        if (isColoured)
            letters = *own;
    }
    return letters;
}

/// A run of a text view under one set of tags. Its letters are never large.
Reading readRun(GtkTextView *view, const GtkTextIter *start, const std::string &text, GtkWidget *window)
{
    GtkTextIter place = *start;
    gtk_text_view_scroll_to_iter(view, &place, 0, FALSE, 0, 0);
    awaitLayout(window);
    const GdkRGBA letters = lettersAt(view, start);
    const Colour ground = colourOf(mostFrequent(Drawing(window).points(lineAt(view, start, window))));
    const Colour front = over(letters, opacityOf(GTK_WIDGET(view)), ground);
    return {"\"" + text + "\"", front, ground, contrastOf(front, ground), textRatio};
}

void readView(GtkTextView *view, GtkWidget *window, std::vector<Reading> &readings)
{
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(gtk_text_view_get_buffer(view), &start);
    while (!gtk_text_iter_is_end(&start)) {
        GtkTextIter end = start;
        gtk_text_iter_forward_to_tag_toggle(&end, nullptr);
        g_autofree char *text = g_strstrip(gtk_text_iter_get_text(&start, &end));
        if (*text)
            readings.push_back(readRun(view, &start, text, window));
        start = end;
    }
}

std::vector<GtkWidget *> mapped(GtkWidget *window, GType type)
{
    std::vector<GtkWidget *> found;
    for (GtkWidget *const widget : allWidgets(window))
        if (g_type_is_a(G_OBJECT_TYPE(widget), type) && gtk_widget_get_mapped(widget))
            found.push_back(widget);
    return found;
}

bool isLegible(GtkWidget *widget)
{
    return gtk_widget_is_sensitive(widget) && opacityOf(widget) > 0;
}

/// By the button that it is on.
std::string nameOfPicture(GtkWidget *image)
{
    GtkWidget *const button = gtk_widget_get_ancestor(image, GTK_TYPE_BUTTON);
    g_autofree char *tip = button ? gtk_widget_get_tooltip_text(button) : nullptr;
    return std::string("picture ") + (tip ? tip : gtk_widget_get_name(image));
}

} // namespace

double contrastOf(const Colour &one, const Colour &other)
{
    constexpr double flare = 0.05;
    const double first = luminanceOf(one), second = luminanceOf(other);
    return (std::max(first, second) + flare) / (std::min(first, second) + flare);
}

std::string nameOf(const Colour &colour)
{
    const auto byte = [](double value) { return int(std::lround(value * 255)); };
    g_autofree char *name = g_strdup_printf("#%02x%02x%02x", byte(colour.red), byte(colour.green), byte(colour.blue));
    return name;
}

std::ostream &operator<<(std::ostream &out, const Reading &reading)
{
    return out << reading.what << ": " << nameOf(reading.front) << " on " << nameOf(reading.ground) << " is "
               << reading.ratio << ", wanted " << reading.wanted;
}

std::vector<Reading> readTexts(GtkWidget *window)
{
    std::vector<Reading> readings;
    const Drawing grounds = drawWithout(mapped(window, GTK_TYPE_LABEL), window);
    for (GtkWidget *const label : mapped(window, GTK_TYPE_LABEL))
        if (isLegible(label) && !shownText(label).empty())
            readings.push_back(readLabel(label, grounds));
    for (GtkWidget *const view : mapped(window, GTK_TYPE_TEXT_VIEW))
        if (isLegible(view))
            readView(GTK_TEXT_VIEW(view), window, readings);
    return readings;
}

std::vector<Reading> readPictures(GtkWidget *window)
{
    const std::vector<GtkWidget *> images = mapped(window, GTK_TYPE_IMAGE);
    const Drawing grounds = drawWithout(images, window), whole(window);
    std::vector<Reading> readings;
    for (GtkWidget *const image : images) {
        if (!isLegible(image) || gtk_image_get_storage_type(GTK_IMAGE(image)) == GTK_IMAGE_EMPTY)
            continue;
        const Box box = inWindow(boxOfRoom(image), image);
        const std::vector<guint32> behind = grounds.points(box), seen = whole.points(box);
        Reading best = {nameOfPicture(image), {}, {}, 0, pictureRatio};
        for (size_t index = 0; index < seen.size(); index++) {
            const Colour front = colourOf(seen[index]), ground = colourOf(behind[index]);
            if (const double ratio = contrastOf(front, ground); ratio > best.ratio)
                best = {best.what, front, ground, ratio, best.wanted};
        }
        readings.push_back(best);
    }
    return readings;
}
