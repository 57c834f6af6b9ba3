#pragma once

#include <memory>
#include <string>
#include <vector>

#include "construct/construct_request.h"
#include "construct/construct_table.h"
#include "exit_status.h"
#include "report/feature_figures.h"

inline namespace tvmath {

struct construct_answer {
    std::shared_ptr<Geometry_Description> record;
    std::vector<figure> figures;
};

/// A construction with all its answers, at least one.
struct construct_result {
    construct_row const* row = nullptr;
    std::vector<construct_feature> features;
    std::vector<construct_answer> answers;  ///< in the order of the construction
    std::size_t chosen = 0;
    std::string memory;  ///< text form of the choice; empty where a construction has one answer at most

    construct_answer const& choice() const { return answers[chosen]; }
};

/// The words of an operation: "nearest", "farthest", ...
char const* operation_name(operation what);

/// What the answers are: "in XY", "as a circle"; empty where nothing has to be said, as for flat features.
std::string form_words(construct_result const& result);

/// What the operation takes, in words, with at least one of these kinds; with none of them that it takes,
/// all.
std::string known_pairs(operation what, std::vector<feature_kind> const& given);

/// Constructs what the request asks for: reads the features, finds the construction, chooses. Otherwise says
/// in one line what is wrong.
exit_status construct(construct_request const& request, construct_result& result, std::string& reason);

}  // namespace tvmath
