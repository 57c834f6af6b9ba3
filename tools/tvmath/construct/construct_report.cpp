#include "construct/construct_report.h"

#include <ostream>

#include "fit/fit_report.h"
#include "record/record_names.h"
#include "report/figure_json.h"
#include "report/number_text.h"

inline namespace tvmath {

void write_text(std::ostream& out, construct_result const& result) {
    out << operation_name(result.row->what);
    for (construct_feature const& f : result.features) out << "  " << f.words;
    out << '\n';
    std::string const words = form_words(result);
    if (!words.empty()) out << "  " << words << '\n';
    std::size_t const n = result.answers.size();
    for (std::size_t i = 0; i < n; ++i) {
        construct_answer const& answer = result.answers[i];
        if (n > 1) {
            out << "answer " << i + 1 << " of " << n << ", " << record_name(answer.record->type())
                << (i == result.chosen ? ", chosen\n" : "\n");
        }
        write_rows(out, rows_of(answer.figures, true, number_text));
    }
}

void write_json(std::ostream& out, construct_result const& result) {
    json_value document;
    document["schema"] = "tvmath.construct/1";
    document["operation"] = operation_name(result.row->what);
    std::string const form = form_name(result.row->form);
    document["form"] = form.empty() ? json_value() : json_value(form);
    document["features"] = json_value::array();
    for (construct_feature const& f : result.features) {
        document["features"].push_back({{"given", f.words}, {"kind", record_name(f.record->type())}});
    }
    document["chosen"] = result.chosen + 1;
    document["answers"] = json_value::array();
    for (std::size_t i = 0; i < result.answers.size(); ++i) {
        construct_answer const& answer = result.answers[i];
        document["answers"].push_back({{"number", i + 1},
                                       {"chosen", i == result.chosen},
                                       {"kind", record_name(answer.record->type())},
                                       {"feature", figures_object(answer.figures)}});
    }
    document["memory"] = result.memory.empty() ? json_value() : json_value(result.memory);
    write_json_text(out, document);
}

}  // namespace tvmath
