// Random operations on annotations, with a model beside the map that says what scripts must see and hear after each.
// Runs for two seconds, or as long as VEYRA_MODEL_SECONDS says; a failure names the seed, which VEYRA_MODEL_SEED sets.
#include "Classes/VeyraAnnotationSO.h"
#include "Tests/Classes/ViewFixture.h"

#include <chrono>
#include <map>
#include <optional>
#include <random>

namespace veyra {

namespace {

double seconds() {
    const char* const text = g_getenv("VEYRA_MODEL_SECONDS");
    return text ? g_ascii_strtod(text, nullptr) : 2;
}

unsigned seed() {
    const char* const text = g_getenv("VEYRA_MODEL_SEED");
    return text ? static_cast<unsigned>(g_ascii_strtoull(text, nullptr, 10)) : std::random_device()();
}

std::string joined(const std::vector<std::string>& parts) {
    std::string all;
    for (const std::string& part : parts)
        all += (all.empty() ? "" : ",") + part;
    return all;
}

/// What scripts must see. Each operation gives the events that it sends.
class Model {
public:
    struct Pin {
        std::string identifier;
        bool isInSight;
    };

    std::vector<std::string> add(const std::vector<Pin>& pins) {
        std::vector<std::string> reported;
        bool dropped = false;
        for (const Pin& pin : pins) {
            if (!_pins.emplace(pin.identifier, pin.isInSight).second || !pin.isInSight)
                continue;
            reported.push_back('"' + pin.identifier + '"');
            dropped = dropped || pin.identifier == "dropped-pin-id";
        }
        std::vector<std::string> events;
        if (!reported.empty())
            events.push_back("mapDidAddViewsForAnnotations [" + joined(reported) + "]");
        if (dropped)
            events.push_back(R"(mapAnnotationDidFinishDrag "dropped-pin-id" {"latitude":1,"longitude":2})");
        return events;
    }
    std::vector<std::string> remove(const std::vector<std::string>& identifiers) {
        std::vector<std::string> events;
        for (const std::string& identifier : identifiers)
            if (_pins.erase(identifier) > 0 && _selected == identifier)
                events.push_back(deselected());
        return events;
    }
    std::vector<std::string> select(const std::string& identifier) {
        const auto pin = _pins.find(identifier);
        if (pin == _pins.end() || !pin->second || _selected == identifier)
            return {};
        std::vector<std::string> events;
        if (_selected)
            events.push_back(deselected());
        _selected = identifier;
        events.push_back("mapDidSelectAnnotation \"" + identifier + "\"");
        return events;
    }
    std::vector<std::string> deselect(const std::string& identifier) {
        return _selected == identifier ? std::vector{deselected()} : std::vector<std::string>();
    }
    bool isInSight(const std::string& identifier) const {
        const auto pin = _pins.find(identifier);
        return pin != _pins.end() && pin->second;
    }
    std::string annotations() const {
        std::vector<std::string> all;
        for (const auto& entry : _pins)
            all.push_back(entry.first);
        return joined(all);
    }
    std::string selected() const { return _selected.value_or(""); }

private:
    std::string deselected() {
        return "mapDidDeselectAnnotation \"" + std::exchange(_selected, std::nullopt).value() + '"';
    }
    std::map<std::string, bool> _pins; // whether in sight, by identifier
    std::optional<std::string> _selected;
};

} // namespace

class AnnotationModel : public ShownMapFixture {
protected:
    AnnotationModel() { record(); }

    unsigned below(unsigned end) { return static_cast<unsigned>(random() % end); }
    std::string anyIdentifier() {
        const unsigned number = below(24);
        return number == 0 ? "dropped-pin-id" : "p" + std::to_string(number);
    }
    Model::Pin anyPin() { return {anyIdentifier(), below(4) > 0}; }
    static std::string scriptOf(const Model::Pin& pin) {
        return "{ latitude: " + std::string(pin.isInSight ? "1" : "70") + ", longitude: 2, identifier: '" +
               pin.identifier + "', title: 'T' }";
    }

    /// Does one random thing to the map and to the model; the events that must follow.
    std::vector<std::string> step() {
        switch (below(7)) {
        case 0: {
            const auto pin = anyPin();
            run("map.addAnnotation(" + scriptOf(pin) + ")");
            return model.add({pin});
        }
        case 1:
            return addMany();
        case 2: {
            const auto identifier = anyIdentifier();
            run("map.removeAnnotation('" + identifier + "')");
            return model.remove({identifier});
        }
        case 3: {
            std::vector<std::string> identifiers;
            std::string script;
            for (unsigned count = below(6); count > 0; --count) {
                identifiers.push_back(anyIdentifier());
                script += "'" + identifiers.back() + "', null, ";
            }
            run("map.removeAnnotations([" + script + "])");
            return model.remove(identifiers);
        }
        case 4: {
            const auto identifier = anyIdentifier();
            run("map.deselectAnnotation('" + identifier + "', false)");
            return model.deselect(identifier);
        }
        case 5:
            return drag();
        default: {
            const auto identifier = anyIdentifier();
            run("map.selectAnnotation('" + identifier + "', false)");
            return model.select(identifier);
        }
        }
    }
    std::vector<std::string> addMany() {
        std::vector<Model::Pin> pins;
        std::string script;
        for (unsigned count = below(8); count > 0; --count) {
            if (below(6) == 0) {
                script += "{ latitude: 1 }, ";
                continue;
            }
            pins.push_back(anyPin());
            script += scriptOf(pins.back()) + ", ";
        }
        run("try { map.addAnnotations([" + script + "]) } catch (e) {}");
        return model.add(pins);
    }
    /// A drag as the map reports it.
    std::vector<std::string> drag() {
        const auto identifier = anyIdentifier();
        std::shared_ptr<VeyraAnnotationSO> dragged;
        for (const auto& annotation : mapView().annotations())
            if (const auto found = std::dynamic_pointer_cast<VeyraAnnotationSO>(annotation))
                if (found->identifier() == id(identifier.c_str()))
                    dragged = found;
        const auto shown = dragged ? mapView().viewForAnnotation(dragged) : nullptr;
        EXPECT_EQ(shown != nullptr, model.isInSight(identifier)) << identifier;
        if (!shown)
            return {};
        onMain([&] {
            dragged->setCoordinate({1.5, 2.5});
            view().mapViewAnnotationViewDidChangeDragStateFromOldState(
                mapView(), shown, MKAnnotationViewDragStateEnding, MKAnnotationViewDragStateDragging);
            dragged->setCoordinate({1, 2});
        });
        return {"mapAnnotationDidFinishDrag \"" + identifier + R"(" {"latitude":1.5,"longitude":2.5})"};
    }

    std::mt19937 random;
    Model model;
};

TEST_F(AnnotationModel, ScriptsSeeAndHearWhatTheModelSays) {
    const unsigned first = seed();
    random.seed(first);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds());
    for (int steps = 0; std::chrono::steady_clock::now() < end && !HasFailure(); ++steps) {
        SCOPED_TRACE("VEYRA_MODEL_SEED=" + std::to_string(first) + ", step " + std::to_string(steps));
        const auto expected = step();
        settle();
        std::string lines;
        for (const std::string& event : expected)
            lines += (lines.empty() ? "" : "\n") + event;
        EXPECT_EQ(recorded(), lines);
        EXPECT_EQ(run("map.annotations.sort().join()"), model.annotations());
        EXPECT_EQ(run("map.selectedAnnotations.join()"), model.selected());
        EXPECT_EQ(mapView().annotations().size(), std::stoul(run("map.annotations.length")));
    }
}

} // namespace veyra
