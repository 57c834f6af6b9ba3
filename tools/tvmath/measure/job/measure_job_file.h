#pragma once

#include "measure/job/job_object.h"
#include "measure/job/measure_job.h"

inline namespace tvmath {

/// Sets all of `job` from its document. False with what is wrong, and where, in the origin: "part.json:
/// tools[3] 'bore': tolerance: ...".
bool read_job_document(nlohmann::json const& document, job_origin& origin, measure_job& job);

/// The same for the file of that name, or for standard input when it is "-".
exit_status read_job_file(std::string const& name, measure_job& job, std::string& reason);

}  // namespace tvmath
