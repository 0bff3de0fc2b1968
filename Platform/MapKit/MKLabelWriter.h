// Measures and draws the letters of names. Used on one thread, the one that made it.
#pragma once

#include "Platform/MapKit/MKLabelStyle.h"
#include "Platform/UIKit/CGGeometry.h"

#include <cairo.h>

#include <memory>
#include <string>
#include <string_view>

typedef struct _PangoContext PangoContext;
typedef struct _PangoFontDescription PangoFontDescription;
typedef struct _PangoLayout PangoLayout;

namespace veyra {

class MKLabelWriter {
public:
    /// The fonts to use, best first, separated by commas; from the next name on that is measured or drawn. Names that
    /// are on the map already keep theirs. Main queue only.
    static void setFontFamily(const std::string& family);
    static const std::string& fontFamily();

    MKLabelWriter();
    MKLabelWriter(const MKLabelWriter&) = delete;
    MKLabelWriter& operator=(const MKLabelWriter&) = delete;
    ~MKLabelWriter();

    /// The size in points, of all lines; a line feed separates them. They are centred on one another.
    CGSize measure(std::string_view text, const MKLabelFont& font);
    /// Draws the text with its halo; its middle lies at (x, y) of the context, in pixels.
    void draw(cairo_t* cairo, double x, double y, std::string_view text, const MKLabelFont& font,
              const MKLabelColors& colors, double scale);

private:
    struct FreeDescription {
        void operator()(PangoFontDescription* description) const;
    };
    struct Unref {
        void operator()(void* object) const;
    };
    /// A text at a size and with a spacing of one point, from which all others follow: letters are not hinted.
    struct Measured {
        std::string text;
        MKLabelFont font; // but for the size and the spacing
        CGSize size;
        double letters = 0; // of the longest line
    };
    void prepare(std::string_view text, const MKLabelFont& font, double scale);
    void setFont(const MKLabelFont& font, double scale);

    Measured _measured; // the last one
    std::string _family;
    std::unique_ptr<PangoFontDescription, FreeDescription> _description;

    std::unique_ptr<PangoContext, Unref> _context;
    std::unique_ptr<PangoLayout, Unref> _layout;
};

} // namespace veyra
