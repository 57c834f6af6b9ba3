#pragma once

inline namespace tvmath {

/// What the program tells its caller. The numbers are an interface: scripts test them. Ordered by gravity, so
/// that of several files the largest status is the status of the run.
enum class exit_status : int {
    done = 0,
    out_of_tolerance = 1,
    wrong_usage = 2,
    unreadable_input = 3,
    no_answer = 4,  ///< too few points, or points that no feature goes through
    internal = 5    ///< a fault of the program or of its surroundings, such as a full disk
};

inline exit_status worse(exit_status a, exit_status b) {
    return a < b ? b : a;
}

}  // namespace tvmath
