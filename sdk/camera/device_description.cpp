#include "camera/device_description.h"

#include <cstring>
#include <new>

#include "core/platform/text.h"
#include "core/results.h"
#include "ry/genicam/ZipArchive.h"
#include "transport/transport_table.h"

namespace RYSDK::camera {

using core::kLogDebug;
using core::kLogErr;

namespace {

constexpr size_t kUrlCapacity = 260;

void AppendUtf8(std::string& out, uint32_t code) {
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (code >> 12)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (code >> 18)));
        out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

bool Unzip(const RawDescription& description, const core::LogSite& site, std::string& out) {
    RyGenApi::ZipArchive archive(description.data.get(), description.length);
    if (!archive.IsOpen()) {
        RY_LOG_EVENT(site, kLogErr, L"OpenZip is invalid pointer. Invalid zipped XML");
        return false;
    }
    uint64_t declared = 0;
    const int item = archive.FirstMember(declared);
    if (item != 0) {
        RY_LOG_EVENT(site, kLogErr, L"GetZipItem returned not OK. Ret(%d)", item);
        return false;
    }
    // The archive's own size claim is not trusted: inflation stops at the limit whatever
    // the header says.
    const int unzipped = archive.ExtractMember(out, kMaxDescriptionBytes);
    if (unzipped != 0) {
        RY_LOG_EVENT(site, kLogErr, L"UnzipItem returned not OK. Ret(%d)", unzipped);
        return false;
    }
    return true;
}

}  // namespace

bool ReadRawDescription(TransportHandle device, const core::LogSite& site,
                        RawDescription& description) {
    const transport::TransportTable& tl = transport::Transport();
    char url[kUrlCapacity] = {};
    size_t urlSize = sizeof(url);
    const GC_ERROR rc = tl.GCGetPortURL(device, url, &urlSize);
    if (rc != GC_ERR_SUCCESS) {
        RY_LOG_EVENT(site, kLogErr, L"GCGetURL returned Ret[%ls]", core::TransportCodeText(rc));
        return false;
    }
    url[sizeof(url) - 1] = '\0';
    DescriptionLocation location;
    switch (ParseDescriptionUrl(url, location)) {
        case UrlVerdict::NotLocal:
            RY_LOG_EVENT(site, kLogErr, L"strstr( %ls, local ) not matched.",
                         core::Widen(url).c_str());
            return false;
        case UrlVerdict::MissingField:
            return false;
        case UrlVerdict::Local:
            break;
    }
    if (location.length > kMaxDescriptionBytes) {
        RY_LOG_EVENT(site, kLogErr, L"description length %llu is larger than %llu bytes",
                     static_cast<unsigned long long>(location.length),
                     static_cast<unsigned long long>(kMaxDescriptionBytes));
        return false;
    }
    // Device memory is read in whole 32-bit words.
    const size_t rounded = (location.length + 3) & ~size_t{3};
    description.data.reset(new (std::nothrow) char[rounded + 1]);
    if (!description.data)
        throw std::bad_alloc();
    std::memset(description.data.get(), 0, rounded + 1);
    size_t readSize = rounded;
    // A failed read leaves zeros, which the node map then refuses as a description.
    tl.GCReadPort(device, location.address, description.data.get(), &readSize);
    description.data[location.length] = '\0';
    description.length = static_cast<uint32_t>(location.length);
    description.zipped = location.zipped;
    return true;
}

std::string Utf16LeToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() * 2);
    const size_t units = bytes.size() / 2;
    auto unitAt = [&](size_t i) {
        return static_cast<uint32_t>(static_cast<unsigned char>(bytes[2 * i])) |
               static_cast<uint32_t>(static_cast<unsigned char>(bytes[2 * i + 1])) << 8;
    };
    for (size_t i = 0; i < units; ++i) {
        uint32_t code = unitAt(i);
        if (code == 0)
            break;
        if (code >= 0xD800 && code <= 0xDBFF && i + 1 < units) {
            const uint32_t low = unitAt(i + 1);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            } else {
                code = 0xFFFD;
            }
        } else if (code >= 0xD800 && code <= 0xDFFF) {
            code = 0xFFFD;
        }
        AppendUtf8(out, code);
    }
    return out;
}

bool DecodeDescription(const RawDescription& description, const core::LogSite& site,
                       std::string& text) {
    std::string unzipped;
    std::string_view bytes(description.data.get(), description.length);
    if (description.zipped) {
        if (!Unzip(description, site, unzipped)) {
            RY_LOG_EVENT(site, kLogErr, L"The XML file is invalid. Check the xml file.");
            return false;
        }
        bytes = unzipped;
    }
    auto startsWith = [&](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
    if (startsWith("\xFF\xFE")) {
        RY_LOG_EVENT(site, kLogDebug, L"UTF header of xml - 0xff 0xfe");
        // The byte-order mark is converted with the text, so the result starts with the
        // UTF-8 mark.
        text = Utf16LeToUtf8(bytes);
        return true;
    }
    if (startsWith("\xEF\xBB\xBF")) {
        RY_LOG_EVENT(site, kLogDebug, L"UTF header of xml - 0xef 0xbb 0xbf");
        bytes.remove_prefix(3);
    } else {
        RY_LOG_EVENT(site, kLogDebug, L"UTF header of xml - unrecognized");
    }
    text.assign(bytes.substr(0, bytes.find('\0')));
    return true;
}

}  // namespace RYSDK::camera

namespace RYSDK::camera {

std::string PlainDescriptionText(const RawDescription& description) {
    const std::string_view bytes(description.data.get(), description.length);
    if (bytes.substr(0, 2) == "\xFF\xFE")
        return Utf16LeToUtf8(bytes);
    return std::string(bytes.substr(0, bytes.find('\0')));
}

}  // namespace RYSDK::camera
