// The address of a tile's image as a pattern: "https://{s}.example.org/{z}/{x}/{y}{r}.png". A plain value; any thread.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace veyra {

/// A pattern that makes no addresses. The message names the pattern and what is wrong with it.
class MKTileAddressError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class MKTileAddress {
public:
    /// {z}, {x} and {y} (or {-y}, counted from the south) must occur; {s} is one of the subdomains; {r} is "@2x" for
    /// screens with two or more device pixels a point and nothing for others. Throws MKTileAddressError for any other
    /// name in braces, a brace without its pair, and what is no http or https address.
    explicit MKTileAddress(std::string pattern, std::vector<std::string> subdomains = {"a", "b", "c"});

    std::string url(int zoom, int column, int row, bool doubled) const;
    /// The host of an image, with its port.
    std::string host(int zoom, int column, int row, bool doubled) const;
    /// True when there are images of twice the density.
    bool hasDoubled() const { return _hasDoubled; }
    const std::string& pattern() const { return _pattern; }

private:
    enum class Name { Text, Zoom, Column, Row, RowFromSouth, Subdomain, Density };
    struct Part {
        Name name;
        std::string text; ///< of Name::Text
    };
    void split();
    void addName(const std::string& name);
    bool has(Name name) const;
    [[noreturn]] void fail(const std::string& problem) const;
    std::string value(const Part& part, int zoom, int column, int row, bool doubled) const;

    std::string _pattern;
    std::vector<std::string> _subdomains;
    std::vector<Part> _parts;
    bool _hasDoubled = false;
};

} // namespace veyra
