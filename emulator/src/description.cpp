#include "description.h"

#include <minizip/ioapi.h>
#include <minizip/zip.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace ry::emulator {

extern const unsigned char kCameraXml[];
extern const std::size_t kCameraXmlSize;

namespace {

constexpr const char* kXmlName = "RyEmulator.xml";

// minizip writes through these callbacks into a growing vector instead of a file.
struct MemoryZip {
    std::vector<std::uint8_t> data;
    std::size_t position = 0;
};

voidpf open_memory(voidpf opaque, const void*, int) {
    return opaque;
}
uLong write_memory(voidpf, voidpf stream, const void* buf, uLong size) {
    auto* zip = static_cast<MemoryZip*>(stream);
    if (zip->position + size > zip->data.size()) {
        zip->data.resize(zip->position + size);
    }
    std::memcpy(zip->data.data() + zip->position, buf, size);
    zip->position += size;
    return size;
}
uLong read_memory(voidpf, voidpf, void*, uLong) {
    return 0;
}
ZPOS64_T tell_memory(voidpf, voidpf stream) {
    return static_cast<MemoryZip*>(stream)->position;
}
long seek_memory(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    auto* zip = static_cast<MemoryZip*>(stream);
    std::size_t base = 0;
    if (origin == ZLIB_FILEFUNC_SEEK_CUR) {
        base = zip->position;
    } else if (origin == ZLIB_FILEFUNC_SEEK_END) {
        base = zip->data.size();
    }
    zip->position = base + offset;
    return 0;
}
int close_memory(voidpf, voidpf) {
    return 0;
}
int error_memory(voidpf, voidpf) {
    return 0;
}

std::vector<std::uint8_t> zip_one_file(const std::string& name, const std::string& content) {
    MemoryZip memory;
    zlib_filefunc64_def functions{};
    functions.zopen64_file = open_memory;
    functions.zread_file = read_memory;
    functions.zwrite_file = write_memory;
    functions.ztell64_file = tell_memory;
    functions.zseek64_file = seek_memory;
    functions.zclose_file = close_memory;
    functions.zerror_file = error_memory;
    functions.opaque = &memory;
    zipFile zip = zipOpen2_64(name.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
    if (zip == nullptr) {
        throw std::runtime_error("cannot create the zipped description");
    }
    zip_fileinfo info{};
    int status = zipOpenNewFileInZip64(zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                       Z_DEFLATED, Z_BEST_COMPRESSION, 0);
    if (status == ZIP_OK) {
        status = zipWriteInFileInZip(zip, content.data(), static_cast<unsigned>(content.size()));
    }
    if (status == ZIP_OK) {
        status = zipCloseFileInZip(zip);
    }
    if (zipClose(zip, nullptr) != ZIP_OK || status != ZIP_OK) {
        throw std::runtime_error("cannot zip the description");
    }
    return memory.data;
}

// UTF-8 to UTF-16 little-endian with a byte-order mark.
std::vector<std::uint8_t> utf16le_with_bom(const std::string& text) {
    std::vector<std::uint8_t> out{0xFF, 0xFE};
    auto put = [&](std::uint32_t unit) {
        out.push_back(static_cast<std::uint8_t>(unit));
        out.push_back(static_cast<std::uint8_t>(unit >> 8));
    };
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
        std::uint32_t cp = extra == 0 ? lead : lead & (0x3F >> extra);
        for (int k = 1; k <= extra && i + k < text.size(); ++k) {
            cp = (cp << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        }
        i += 1 + extra;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            put(0xD800 | (cp >> 10));
            put(0xDC00 | (cp & 0x3FF));
        } else {
            put(cp);
        }
    }
    return out;
}

}  // namespace

namespace {

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// Puts `item` as the first child of the element that declares `name`.
void AddItem(std::string& xml, const std::string& name, const std::string& item) {
    const auto declared = xml.find(" Name=\"" + name + "\"");
    if (declared == std::string::npos)
        return;
    const auto opened = xml.find('>', declared);
    if (opened != std::string::npos)
        xml.insert(opened + 1, "\n    " + item);
}

void ApplyVariant(std::string& xml, const std::string& name, FeatureVariant variant) {
    switch (variant) {
        case FeatureVariant::Missing:
            // Renamed rather than removed, so that nothing referring to it dangles.
            ReplaceAll(xml, "Name=\"" + name + "\"", "Name=\"" + name + "Absent\"");
            ReplaceAll(xml, ">" + name + "<", ">" + name + "Absent<");
            break;
        case FeatureVariant::ReadOnly:
            AddItem(xml, name, "<ImposedAccessMode>RO</ImposedAccessMode>");
            break;
        case FeatureVariant::NotAvailable:
            AddItem(xml, name, "<pIsAvailable>EmulatorNeverAvailable</pIsAvailable>");
            break;
        case FeatureVariant::AsInteger: {
            const auto start = xml.find("<Float Name=\"" + name + "\"");
            const auto end = start == std::string::npos ? start : xml.find("</Float>", start);
            if (end != std::string::npos) {
                xml.replace(end, 8, "</Integer>");
                xml.replace(start, 6, "<Integer");
            }
            break;
        }
    }
}

}  // namespace

std::string camera_xml_text(bool trigger_entry_ext,
                            const std::map<std::string, FeatureVariant>& variants) {
    std::string xml(reinterpret_cast<const char*>(kCameraXml), kCameraXmlSize);
    if (!variants.empty()) {
        for (const auto& [name, variant] : variants)
            ApplyVariant(xml, name, variant);
        const auto end = xml.rfind("</RegisterDescription>");
        if (end != std::string::npos) {
            xml.insert(end,
                       "  <Integer Name=\"EmulatorNeverAvailable\">\n    <Value>0</Value>\n"
                       "  </Integer>\n");
        }
    }
    if (trigger_entry_ext) {
        const std::string from = "<EnumEntry Name=\"External\"";
        const auto at = xml.find(from);
        if (at != std::string::npos) {
            xml.replace(at, from.size(), "<EnumEntry Name=\"Ext\"");
        }
    }
    return xml;
}

StoredDescription store_description(const std::string& xml, XmlForm form) {
    switch (form) {
        case XmlForm::Zip:
            return {zip_one_file(kXmlName, xml), "RyEmulator.zip"};
        case XmlForm::Plain:
            return {{xml.begin(), xml.end()}, kXmlName};
        case XmlForm::Utf8Bom: {
            std::vector<std::uint8_t> bytes{0xEF, 0xBB, 0xBF};
            bytes.insert(bytes.end(), xml.begin(), xml.end());
            return {bytes, kXmlName};
        }
        case XmlForm::Utf16Bom: {
            // The declaration must name the encoding the bytes are in.
            std::string text = xml;
            const std::string declared = "encoding=\"utf-8\"";
            if (const auto at = text.find(declared); at != std::string::npos) {
                text.replace(at, declared.size(), "encoding=\"UTF-16\"");
            }
            return {utf16le_with_bom(text), kXmlName};
        }
    }
    return {{xml.begin(), xml.end()}, kXmlName};
}

std::string local_url(const std::string& file_name, std::uint32_t address, std::size_t length) {
    char text[128];
    std::snprintf(text, sizeof text, "Local:%s;%X;%zX", file_name.c_str(), address, length);
    return text;
}

}  // namespace ry::emulator
