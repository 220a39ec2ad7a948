// What the tests of the Bruker import share: words, parameter files, data sets in folders of their own.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "common/bytes.h"
#include "common/text.h"
#include "support.h"

namespace zolt {

using Records = std::vector<std::string>;

template <class T>
std::string words(const std::vector<T>& values, ByteOrder order = ByteOrder::little) {
    std::string bytes(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
    for (auto at = bytes.begin(); order != machine_order && at != bytes.end(); at += sizeof(T)) std::reverse(at, at + sizeof(T));
    return bytes;
}

// n values that differ in every byte.
inline std::vector<int32_t> some_values(size_t n) {
    std::vector<int32_t> values;
    for (uint32_t i = 1; i <= n; ++i) values.push_back(static_cast<int32_t>(i * 2654435761U));
    return values;
}

// A parameter file of the given records, without their "##".
inline std::string parameter_file(const Records& records) {
    std::string text = "##TITLE= Parameter file\n##JCAMPDX= 5.0\n";
    for (const std::string& record : records) text += "##" + record + "\n";
    return text + "##END=\n";
}

inline std::string acqus(int td, const Records& more = {}) {
    Records all = {"ORIGIN= Bruker BioSpin GmbH", "$O1= 1880.5", "$O2= -7", "$SFO1= 400.5", "$SW_h= 8000",
                   format_text("$TD= %d", td)};
    all.insert(all.end(), more.begin(), more.end());
    return parameter_file(all);
}

class BrukerImport : public test::CommandTest {
protected:
    // A fid of these bytes with this acqus, in a folder of its own.
    std::string put(const std::string& fid, const std::string& parameters) {
        const std::string name = format_text("set%d/", ++sets_);
        data_.write(name + "acqus", parameters);
        return data_.write(name + "fid", fid);
    }
    int import(const std::string& fid, const std::string& parameters) { return run("IM " + put(fid, parameters)); }
    // All slices of the imported file, one behind the other.
    std::vector<Complex> grid() const {
        size_t points = 1;
        for (const Dimension& d : show.dims) points *= static_cast<size_t>(d.points);
        const std::string bytes = test::read_file(show.file_a);
        std::vector<Complex> all(points);
        if (bytes.size() >= 8 * points) std::memcpy(static_cast<void*>(all.data()), &bytes[bytes.size() - 8 * points], 8 * points);
        return all;
    }
    // Real and imaginary parts in turn.
    std::vector<float> values() const {
        const auto* parts = reinterpret_cast<const float*>(show.cvNMRdata().data());
        return {parts, parts + 2 * show.cvNMRdata().size()};
    }

    test::TemporaryFolder data_;
    int sets_ = 0;
};

}  // namespace zolt
