// A page with a map that has been laid out, and what tests of overlays want to know of it.
#pragma once

#include "Classes/VeyraOverlay.h"
#include "Tests/Classes/ViewFixture.h"

namespace veyra {

class OverlayFixture : public ShownMapFixture {
protected:
    /// The overlays on the map, back to front, when the main queue has run.
    std::vector<std::shared_ptr<VeyraOverlay>> onMap() {
        runMain();
        std::vector<std::shared_ptr<VeyraOverlay>> found;
        onMain([&] {
            for (const auto& overlay : mapView().overlays())
                found.push_back(std::dynamic_pointer_cast<VeyraOverlay>(overlay));
        });
        return found;
    }
    /// The text forms of their identifiers, with spaces between them.
    std::string order() {
        std::string text;
        for (const auto& overlay : onMap())
            text += (text.empty() ? "" : " ") + overlay->identifier().description().utf8();
        return text;
    }
    /// The identifiers that scripts read, sorted.
    std::string registered() { return run("[...map.overlays].map(String).sort().join(' ')"); }
    /// The only overlay, added by the script's object.
    std::shared_ptr<VeyraOverlay> added(const std::string& object) {
        EXPECT_EQ(run("map.addOverlay(" + object + ")"), "undefined");
        const auto found = onMap();
        EXPECT_EQ(found.size(), 1u);
        return found.size() == 1 ? found.front() : nullptr;
    }
};

} // namespace veyra
