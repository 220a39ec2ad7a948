// The tailer as a whole: its lines go to the sections, END_TAILER ends it.
#include "datafile/tailer.h"

#include "common/text.h"
#include "datafile/sections.h"

namespace zolt {

void read_tailer(std::string_view text, DataRecord& data) {
    SectionReader reader(data);
    for (std::string_view line; take_line(text, line);) {
        const auto fields = split_fields(line, "\t\r\n=");
        if (!fields.empty() && same_word(trimmed(fields[0]), "END_TAILER")) return;
        reader.take(line);
    }
}

std::string tailer_text(const DataRecord& data, std::string_view replaced) {
    return (replaced.empty() ? tailer_sections(data) : updated_tailer(replaced, data)) + "END_TAILER\r\n";
}

}  // namespace zolt
