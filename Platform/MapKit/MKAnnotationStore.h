// The annotations of a map, each under a number: its object, its point on the flat world, and the view that it has
// while it is in view. Owned by the map's annotations; main queue only.
#pragma once

#include "Platform/Foundation/NumberTable.h"
#include "Platform/MapKit/MKAnnotationView.h"
#include "Platform/MapKit/MKPointIndex.h"

#include <array>

namespace veyra {

class MKAnnotationStore {
public:
    static constexpr uint32_t none = NumberTable::none;

    struct Entry {
        std::shared_ptr<MKAnnotation> annotation; // null: the number is free
        std::shared_ptr<MKAnnotationView> view;
        bool hasPoint : 1 = false;
        bool hasBeenShown : 1 = false; // a pin falls once
        bool isNewInOrder : 1 = false;
        bool waitsToDrop : 1 = false;   // not drawn until its fall begins
        uint32_t attachSerial : 28 = 0; // tells the times apart that the annotation was given a view
        uint32_t position = none;       // in the drawing order as it was last made
    };

    /// The number of a new annotation, or `none` for one that is there already.
    uint32_t add(const std::shared_ptr<MKAnnotation>& annotation);
    /// Frees the number. The entry has no view any more.
    void remove(uint32_t number);
    /// The annotation's number, or `none`.
    uint32_t find(const MKAnnotation* annotation) const;
    /// Reads the annotation's coordinate anew.
    void updatePoint(uint32_t number);

    Entry& operator[](uint32_t number) { return _entries[number]; }
    const Entry& operator[](uint32_t number) const { return _entries[number]; }
    /// The annotation's place on the map, x in the world, or the last one that it had.
    MKMapPoint pointOf(uint32_t number) const { return _index.pointOf(number); }
    /// Points that the annotation's view is drawn above its place. Default 0.
    float liftOf(uint32_t number) const {
        const size_t block = number / liftBlockSize;
        return block < _lifts.size() && _lifts[block] ? (*_lifts[block])[number % liftBlockSize] : 0;
    }
    void setLift(uint32_t number, float lift);
    size_t size() const { return _entries.size() - _free.size(); }
    std::vector<std::shared_ptr<MKAnnotation>> all() const;
    /// The numbers of the annotations in a rectangle of the map, which may lie on any copy of the world or on several.
    std::vector<uint32_t> numbersIn(const MKMapRect& rect) const;
    /// Whether a point of the world lies in the rectangle, on any copy.
    static bool isIn(const MKMapRect& rect, MKMapPoint point);

private:
    uint32_t foreignNumberOf(const MKAnnotation* annotation) const;
    static size_t hashOf(const MKAnnotation* annotation) { return std::hash<const void*>()(annotation); }

    /// The lifts of numbers in a row.
    static constexpr uint32_t liftBlockSize = 256;
    using LiftBlock = std::array<float, liftBlockSize>;

    BlockArray<Entry> _entries;
    std::vector<uint32_t> _free;
    NumberTable _foreignNumbers; // of annotations that another map had first, and which know their number there
    MKPointIndex _index;
    // Views are lifted while they fall or are dragged, and most never again: blocks are made where there is a lift and
    // kept until there is none.
    std::vector<std::unique_ptr<LiftBlock>> _lifts;
    size_t _lifted = 0;
};

} // namespace veyra
