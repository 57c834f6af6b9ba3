#pragma once

#include <memory>
#include <string>

#include "exit_status.h"
#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// How points and records stand in files.
enum class file_form { csv, text, hexadecimal, xml };

/// The form of a word of the command line (csv, text, hex, xml) or, when that is empty, of the suffix of the
/// file: .csv and .xyz, .txt, .hex, .xml. False, with the reason, when neither says it.
bool find_form(std::string const& word, std::string const& file, file_form& form, std::string& reason);

/// Reads the file, or standard input for "-", into a record; lists of points become point clouds. `type` is
/// the kind that is expected, which a text that does not name it needs; 0 when none is. Measured data as the
/// kind takes any list of points. On `done` every number of the file is in `record`, and finite. Otherwise
/// says in one line what is wrong: `FILE: reason`.
exit_status read_record(std::string const& file, file_form form, unsigned long long type,
                        std::shared_ptr<Geometry_Description>& record, std::string& reason);

struct write_options {
    int precision = 15;        ///< significant digits of lists of points in text and XML
    unsigned char method = 0;  ///< of compressed points
    bool bare = false;         ///< without the word for the kind in front of a text
};

/// The bytes of a file that holds the record. `no_answer`, with the reason, when the form has no place for
/// it.
exit_status record_bytes(Geometry_Description const& record, file_form form, write_options const& options,
                         std::string& bytes, std::string& reason);

}  // namespace tvmath
