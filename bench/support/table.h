// What is printed.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// A table on the standard output, line by line.
class Table {
public:
    /// @param widths  of the cells, in characters. The first column stands to the left, the others to the right.
    explicit Table(std::vector<int> widths)
        : m_widths(std::move(widths))
    {
    }
    void line(const std::vector<std::string>& cells) const;
    void rule() const;

private:
    std::vector<int> m_widths;
};

/// How many times one is the other.
std::string ratio(double above, double below);

/// Whether the straightforward way is to be measured at a size.
/// @param smaller        what its slowest measure took at the size before; none when it was left out there.
/// @param timesAsMuch    how much longer it is expected to take.
bool endsInTime(std::optional<double> smaller, double timesAsMuch);

/// Seconds of one measure at one size.
struct Comparison {
    std::string measure;
    int size = 0;
    double corvane = 0;
    double bare = 0;
    std::optional<double> rowByRow = std::nullopt; ///< none where it was left out
};

/// Prints the ratios, those of one measure together.
/// @param sizes  heading of the sizes.
/// @param times  whether to print the seconds as well, on the error output.
void printComparisons(const char* sizes, std::vector<Comparison> comparisons, bool times);
