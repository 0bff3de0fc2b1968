// Names drawn ready to be put on the map, mark and halo included, the most recently used ones, bounded in bytes. Main
// queue only; shared by all maps and never destroyed.
#pragma once

#include "Platform/MapKit/MKLabelLayout.h"

#include <cairo.h>

#include <list>
#include <memory>
#include <unordered_map>

namespace veyra {

/// What a name's picture depends on.
struct MKLabelArtKey {
    const BasemapNames* names = nullptr;
    size_t index = 0;
    size_t step = 0;
    MKMapType mapType = MKMapTypeStandard;
    UIUserInterfaceStyle style = UIUserInterfaceStyleLight;
    double scale = 1; ///< device pixels a point
    friend bool operator==(const MKLabelArtKey&, const MKLabelArtKey&) = default;
};

/// A name's picture (Cairo ARGB32), and where it lies from the name's place, in pixels.
class MKLabelArt {
public:
    MKLabelArt(cairo_surface_t* surface, int left, int top) : _surface(surface), _left(left), _top(top) {}
    MKLabelArt(const MKLabelArt&) = delete;
    MKLabelArt& operator=(const MKLabelArt&) = delete;
    ~MKLabelArt() { cairo_surface_destroy(_surface); }

    cairo_surface_t* surface() const { return _surface; }
    PixelRect placedAt(int x, int y) const;
    size_t byteSize() const;

private:
    cairo_surface_t* const _surface;
    const int _left, _top;
};

class MKLabelArtCache {
public:
    static constexpr size_t byteLimit = size_t{6} << 20;
    static MKLabelArtCache& shared();

    /// The picture if it is there, or null.
    const MKLabelArt* find(const MKLabelArtKey& key);
    /// Draws the picture. Throws std::bad_alloc.
    const MKLabelArt* draw(const MKLabelArtKey& key, const MKSettledLabel& label);
    /// Counts what is found and drawn.
    uint64_t useCount() const { return _useCount; }
    /// Lets go of pictures beyond the limit, but of none that was used after the count stood at `useCount`: what is on
    /// the screen stays, however much it is.
    void trim(uint64_t useCount);
    size_t byteSize() const { return _byteSize; }

private:
    struct Hash {
        size_t operator()(const MKLabelArtKey& key) const noexcept;
    };
    struct Entry {
        MKLabelArtKey key;
        std::unique_ptr<const MKLabelArt> art;
        uint64_t lastUse;
    };
    using Order = std::list<Entry>; // most recently used first

    MKLabelWriter _writer;
    size_t _byteSize = 0;
    uint64_t _useCount = 0;
    Order _order;
    std::unordered_map<MKLabelArtKey, Order::iterator, Hash> _entries;
};

} // namespace veyra
