#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "measure/report/measure_rows.h"

inline namespace tvmath {

/// Where the columns of all tables of a report are: decimal points stand below each other throughout.
class measure_layout {
public:
    /// Makes room for the rows of a table.
    void include(std::vector<measure_row> const& rows);
    /// Settles the columns when all rows have been seen.
    void settle();

    /// The names of the columns that the rows fill; empty where there is nothing but what was measured.
    std::string titles_of(std::vector<measure_row> const& rows) const;
    std::string line_of(measure_row const& row) const;
    /// A name with the verdict above those of the rows.
    std::string line_of(std::string const& name, std::string const& verdict) const;

private:
    std::size_t label_ = 0;
    std::array<std::size_t, measure_columns> whole_ = {}, fraction_ = {};  // widths
    std::array<std::size_t, measure_columns> end_ = {};
    std::size_t verdict_at_ = 0;
};

/// Characters, not bytes: names are in UTF-8.
std::size_t width_of(std::string const& text);

}  // namespace tvmath
