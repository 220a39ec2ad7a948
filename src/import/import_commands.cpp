// IM and GA: from a typed name to File A. The data set is replaced only when everything has worked.
#include "import/import_commands.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/file_commands.h"
#include "datafile/native_file.h"
#include "datafile/placed.h"
#include "datafile/sections.h"
#include "import/locate.h"
#include "import/tranauto.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view import_separators = " ,\t\r\n";
constexpr uint64_t smallest_native_start = 16;

struct ImportRequest {
    std::string file;    ///< as typed
    std::string key;     ///< format key, "" for detection
    std::string output;  ///< as typed behind SPECIAL_NAME, "" for the usual name
    ImportOptions options;
};

// file and -KEY come in either order; the key's dash may be left out behind the file.
ImportRequest read_request(Arguments& args) {
    ImportRequest request;
    for (std::string token = args.next(import_separators); !token.empty(); token = args.next(import_separators)) {
        if (same_word(token, "SR0") || same_word(token, "SR1"))
            request.options.swap_parts = token.back() == '1';
        else if (same_word(token, "SPECIAL_NAME"))
            request.output = typed_path(args.next(import_separators));
        else if (token.starts_with('-'))
            request.key = token.substr(1);
        else if (request.file.empty())
            request.file = typed_path(token);
        else
            request.key = token;
    }
    return request;
}

bool agreed(const char* caption, const char* text) {
    return playing_back() || platform().question(caption, text, Buttons::yes_no) == Answer::yes;
}

// ------------------------------------------------------------------------------------------------------ the output's name

// Names that every experiment's data have.
bool says_nothing(const std::string& name) {
    static constexpr const char* names[] = {"fid", "ser", "1r", "1i", "2rr", "2ri", "2ir", "2ii", "3rrr", "phasefile", "d", "data"};
    return std::any_of(std::begin(names), std::end(names), [&](const char* one) { return same_word(name, one); });
}

// strychnine_1h_10 for .../strychnine_1h/10/fid; the experiment folder's own name where it is no number.
std::string name_after_folders(std::string folder) {
    if (same_word(name_of(folder_of(folder)), "pdata")) folder = folder_of(folder);
    if (same_word(name_of(folder), "pdata")) folder = folder_of(folder);
    const std::string experiment = name_of(folder);
    const std::string sample = name_of(folder_of(folder));
    if (all_digits(experiment)) return sample.empty() ? experiment : sample + "_" + experiment;
    if (experiment.empty()) return "import";
    const bool fid_folder = experiment.size() > 4 && same_word(std::string_view(experiment).substr(experiment.size() - 4), ".fid");
    return fid_folder ? without_extension(experiment) : experiment;
}

std::string output_path(const ImportRequest& request, const std::string& input) {
    if (request.output.find('/') != std::string::npos) return absolute_path(request.output);
    const std::string folder = settings.import_out_dir.empty() ? data_path(true) : absolute_path(settings.import_out_dir);
    if (!request.output.empty()) return folder + "/" + request.output;
    const std::string base = without_extension(name_of(input));
    return folder + "/" + (says_nothing(base) ? name_after_folders(folder_of(input)) : base) + ".zolt";
}

// ------------------------------------------------------------------------------------------------------------ the import

// Buffers are there to compare with: they stay from one File A to the next, but for those that the new one brings.
void keep_buffers(DataRecord& fresh) {
    std::vector<DataBuffer> own = std::exchange(fresh.buffers, {});
    fresh.buffers = std::move(show.buffers);
    for (DataBuffer& buffer : own) set_buffer(fresh, std::move(buffer));
}

void commit(DataSet&& fresh) {
    keep_buffers(fresh);
    fresh.file_b = show.file_b;
    fresh.loaded = true;
    mark_saved(fresh);
    show = std::move(fresh);
}

// The record of the translator with the vectors of its output: what the native file's type has no place for, or cuts,
// stays with the data set.
void keep_beside_file(const DataRecord& parameters, DataSet& fresh) {
    const std::string file = fresh.file_a;
    static_cast<DataRecord&>(fresh) = parameters;
    fresh.file_a = file;
}

void set_default_phases(DataSet& data) {
    data.phase = {static_cast<float>(settings.default_pa), static_cast<float>(settings.default_pb),
                  static_cast<float>(settings.default_pc)};
}

int read_native(const std::string& path, DataSet& fresh) {
    if (!FileRead(path, fresh)) return 0;
    set_default_phases(fresh);
    return 1;
}

// Translates `input` with the request's key and reads the output.
int translate(const std::string& input, const ImportRequest& request, DataSet& fresh) {
    DataSet parameters;
    std::string message;
    const std::string output = output_path(request, input);
    if (!TRANAUTO(input, output, request.key, request.options, parameters, message)) {
        if (!message.empty()) refuse(message);
        return refuse("Failed to import\n");
    }
    if (!FileRead(output, fresh)) return refuse("Failure to read imported file back from disk.");
    keep_beside_file(parameters, fresh);
    return 1;
}

int import_file(const std::string& path, ImportRequest request, DataSet& fresh) {
    if (!file_facts(path).exists) return refuse(format_text("Could not find file - %s", path.c_str()));
    std::string reason;
    const std::string input = data_file_of(path, reason);
    if (input.empty()) return refuse(reason);
    if (!open_for_reading(input)) return refuse(format_text("File %s cannot be opened for reading.", input.c_str()));
    switch (classify_file(input)) {
        case FileClass::native:
            return read_native(input, fresh) != 0 ? 1 : refuse(format_text("Could not read file %s!", input.c_str()));
        case FileClass::integer_native:
            request.key = "CDFFINT";
            break;
        case FileClass::swapped_native:
            request.key = "CDFFUNIX";
            break;
        case FileClass::missing:
        case FileClass::foreign:
            break;
    }
    return translate(input, request, fresh);
}

int file_not_found(const std::string& path) {
    return refuse(
        format_text("File [ %s ] not found.\nIn module FILE function IsFileCDFF\nSpelled correctly?\nPath correct?\n"
                    "Does the file exist?",
                    path.c_str()));
}

// Reads a native file, or offers a foreign one to the import; `may_go_on` asks what has to be asked before.
int open_file(Arguments& args, const char* title, bool (*may_go_on)(), DataSet& fresh) {
    std::string file = typed_path(args.next());
    if (file.empty()) file = platform().file_dialog(FileChoice::open, title).value_or("");
    if (file.empty()) return 0;
    const std::string path = absolute_path(file);
    const FileFacts facts = file_facts(path);
    if (!facts.exists) return file_not_found(path);
    std::string reason;
    if (data_file_of(path, reason).empty()) return refuse(reason);
    if (facts.regular && facts.size < smallest_native_start)
        return refuse(format_text("File %s is no data file: it holds only %d bytes.", path.c_str(), static_cast<int>(facts.size)));
    if (!may_go_on()) return 0;

    const FileClass file_class = facts.folder ? FileClass::foreign : classify_file(path);
    if (file_class == FileClass::native) return read_native(path, fresh);
    if (file_class == FileClass::foreign) {
        const std::string text =
            format_text("Selected file: %s,\nis not a CDFF file.  \nWant to try an Auto Detect Import?", path.c_str());
        if (platform().question("Import ?", text, Buttons::yes_no) != Answer::yes) return 0;
    }
    return import_file(path, {}, fresh);
}

bool may_replace_a() {
    return !show.loaded || !show.changed ||
           agreed("GetFile",
                  "The current opened data set has been modified\nand NOT saved to disk.\n\n"
                  "YES will Overwrite the current working data set in memory\n");
}

// Makes what was read File A.
int committed(int result, DataSet& fresh) {
    if (result == 1) commit(std::move(fresh));
    return result;
}

}  // namespace

int cmd_import(Arguments& args) {
    if (args.ask_usage(import_separators)) return show_reply("IM or Import [file] [-KEY] [SR0 / SR1] [SPECIAL_NAME name]");
    const ImportRequest request = read_request(args);
    if (show.loaded && show.changed &&
        !agreed("Replace File A", "File A is opened and has been modified.\nOverwrite with imported file?"))
        return 0;
    const std::string file =
        request.file.empty() ? platform().file_dialog(FileChoice::open, "Open Import File").value_or("") : request.file;
    if (file.empty()) return 0;
    DataSet fresh;
    return committed(import_file(absolute_path(file), request, fresh), fresh);
}

int cmd_getfile(Arguments& args) {
    if (args.ask_usage()) return show_reply("GA or GetFile or OpenFile [file]");
    DataSet fresh;
    return committed(open_file(args, "Open File A", may_replace_a, fresh), fresh);
}

int cmd_getfileb(Arguments& args) {
    if (args.ask_usage()) return show_reply("GB or GetFileB or OpenFileB [file]");
    DataSet fresh;
    const auto may_replace_b = [] { return agreed_to_drop_b("GetFileB"); };
    if (open_file(args, "Open File B", may_replace_b, fresh) != 1) return 0;
    show_b = std::move(fresh);
    show_b.loaded = true;
    mark_saved(show_b);
    show.file_b = show_b.file_a;
    report_file_b();
    return 1;
}

int cmd_zz(Arguments& /*args*/) {
    const std::string& configured = settings.zz_file_path;
    const std::string path = configured.empty() ? show.file_a : absolute_path(typed_path(configured));
    if (path.empty()) return refuse("ZZ reads the file of the key ZZ_File_Path of ZOLT.INI, or File A again: there is neither.");
    DataSet fresh;
    return file_facts(path).regular && read_native(path, fresh) != 0 ? committed(1, fresh)
                                                                     : refuse(format_text("Could not read file %s!", path.c_str()));
}

}  // namespace zolt
