// What reading and writing a whole data set cost beside a copy of the same bytes in the page cache; the flush to disk is
// left out on both sides.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "datafile/arrayed.h"
#include "datafile/native_file.h"
#include "platform/silent_platform.h"
#include "rows.h"
#include "state/session.h"

namespace zolt::bench {
namespace {

constexpr int32_t points = 4096, slices = 2048;

// A folder with the file of each header type, removed at the end.
struct Files {
    Files() {
        set_platform(&platform);
        char name[] = "/tmp/zolt-bench-XXXXXX";
        if (mkdtemp(name) == nullptr) std::abort();
        folder = name;
        if (!data.store.allocate(slices, points)) std::abort();
        float value = 0;
        for (Complex& point : data.store.all()) {
            point = {value, -value};
            value += 0.25F;
        }
        data.dims[0].points = points;
        data.dims[1].points = slices;
        data.dims[2].points = data.dims[3].points = 1;
        for (session.header_type = 1; session.header_type <= 3; ++session.header_type)
            if (!write(path(session.header_type))) std::abort();
    }
    ~Files() { std::filesystem::remove_all(folder); }
    std::string path(int type) const { return folder + "/" + std::to_string(type); }
    bool write(const std::string& to) const {
        File file(to, "wb");
        NativeLayout layout;
        return write_native_file(file, data, layout) && file.close();
    }

    std::string folder;
    DataSet data;
    SilentPlatform platform;
};

Files& files() {
    static Files made;
    return made;
}

void copy_file(benchmark::State& state) {
    for (auto _ : state)
        std::filesystem::copy_file(files().path(3), files().path(9), std::filesystem::copy_options::overwrite_existing);
}

template <int type>
void write_file(benchmark::State& state) {
    session.header_type = type;
    for (auto _ : state)
        if (!files().write(files().path(8))) state.SkipWithError("cannot write");
}

template <int type>
void read_file(benchmark::State& state) {
    for (auto _ : state) {
        show = DataSet();
        show.loaded = true;
        show.file_a = files().path(type);
        if (!enter_arrayed(complex_arrayed)) state.SkipWithError("cannot read");
    }
    show = DataSet();
}

constexpr const char* group = "a file of 2048 x 4096 points (64 MiB)";
constexpr const char* copy = "copy of the file";

}  // namespace

std::vector<Row> file_rows() {
    return {{group, copy, copy_file, ""},
            {group, "read all slices, header type 1", read_file<1>, copy},
            {group, "read all slices, header type 2", read_file<2>, copy},
            {group, "read all slices, header type 3", read_file<3>, copy},
            {group, "write all slices, header type 1", write_file<1>, copy},
            {group, "write all slices, header type 2", write_file<2>, copy},
            {group, "write all slices, header type 3", write_file<3>, copy}};
}

}  // namespace zolt::bench
