// SVG is written here; what takes fonts and pixels is painted by the front end.
#include "display/picture_file.h"

#include <algorithm>

#include "common/arguments.h"
#include "common/file.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "display/svg.h"
#include "platform/platform.h"

namespace zolt {

namespace {

// "SVG, PDF and PNG".
std::string listed(const std::vector<std::string>& extensions) {
    std::string text;
    for (size_t i = 0; i < extensions.size(); ++i)
        text += (i == 0 ? "" : i + 1 < extensions.size() ? ", " : " and ") + upper(extensions[i]);
    return text;
}

std::string content_of(const std::string& path, const std::vector<Picture>& pages, const Palette& palette, double dots_per_pixel) {
    const std::string extension = extension_of(path);
    if (same_word(extension, "svg")) return svg_text(pages.front(), palette);
    const PictureFormat format = same_word(extension, "png") ? PictureFormat::png : PictureFormat::pdf;
    return platform().paint_pictures(pages, palette, format, dots_per_pixel);
}

}  // namespace

std::string picture_target(const std::string& name, const std::vector<std::string>& extensions) {
    std::string path = typed_path(name);
    const auto refused = [](const std::string& text) {
        refuse(text);
        return std::string();
    };
    if (path.ends_with('/')) return refused(format_text("%s is a folder.\nGive the name of a file in it.", path.c_str()));
    path = absolute_path(path);
    if (is_device(path)) return refused(format_text("Could not open File: %s", path.c_str()));
    std::string extension = extension_of(path);
    if (extension.empty()) {
        extension = extensions.front();
        path += (path.ends_with('.') ? "" : ".") + extension;
    }
    if (std::none_of(extensions.begin(), extensions.end(), [&](const std::string& known) { return same_word(known, extension); }))
        return refused(format_text("%s can be written here, not .%s.\nGive the name such an extension.", listed(extensions).c_str(),
                                   extension.c_str()));
    if (!same_word(extension, "svg") && !platform().paints_pictures())
        return refused("zolt-cli writes pictures as SVG; zolt writes PDF and PNG.");
    return path;
}

bool write_pictures(const std::string& path, const std::vector<Picture>& pages, const Palette& palette, double dots_per_pixel) {
    if (pages.empty() || overwrite_refused(path)) return false;
    const std::string content = content_of(path, pages, palette, dots_per_pixel);
    if (content.empty()) return fail(format_text("%s could not be painted.\nThe picture may be too large.", path.c_str()));
    ReplacedFile file;
    if (!file.open(path) || !file.write(content) || !file.commit())
        return fail(format_text("Could not open File: %s", path.c_str()));
    return true;
}

}  // namespace zolt
