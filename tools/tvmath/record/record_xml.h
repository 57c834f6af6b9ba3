#pragma once

#include <memory>
#include <string>

#include "exit_status.h"
#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// Whether this build reads XML. It writes it always.
bool reads_xml();

/// Reads a document that is one feature, as `TVXML` writes them, or a list of points: an element `Points`
/// with an element `Point` for each, of the attributes XAxis, YAxis and, in space, ZAxis. A list becomes a
/// point cloud. Returns `done` and sets `record`, or says in one line why not: `unreadable_input`, and
/// `internal` when the machine is to blame.
exit_status read_record_xml(std::string const& bytes, std::shared_ptr<Geometry_Description>& record,
                            std::string& reason);

/// Such a document. `precision` is the number of digits of a list of points; features have 8. Returns
/// `no_answer`, with the reason, for a kind that has no XML and for a null feature.
exit_status record_xml(Geometry_Description const& record, int precision, std::string& bytes,
                       std::string& reason);

}  // namespace tvmath
