#include "nodes/RegisterNodes.h"

#include <cstring>
#include <limits>

#include "loader/Loader.h"
#include "nodes/NodeKinds.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

namespace {

constexpr int64_t kMaxRegisterLength = 1 << 24;

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

}  // namespace

RegisterNode::RegisterNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal)
    : Node(map, name, principal) {}

void RegisterNode::ParseRegisterBlock(const xml::Element& element, Loader& loader) {
    const xml::Document& doc = loader.Doc();
    for (const xml::Element* child = doc.FirstChild(element); child != nullptr;
         child = doc.NextSibling(*child)) {
        if (child->name != "StructEntry" && child->name != "Extension") {
            properties_.push_back(Property{child->name, child->text, {}});
            ParseItem(*child, loader);
        }
    }
}

bool RegisterNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    const std::string_view text = child.text;
    if (tag == "Address") {
        address_ += loader.Integer(child, name_);
    } else if (tag == "pAddress") {
        addressRefs_.push_back(Ref{text});
    } else if (tag == "IntSwissKnife") {
        // Entries of one StructReg parse the same block; the formula node is created once.
        Node* formula = map_.Find(loader.Doc().AttributeValue(child, "Name"));
        if (formula == nullptr) {
            formula = loader.CreateNode(child);
        }
        if (formula != nullptr) {
            addressRefs_.push_back(Ref{formula->NameView(), formula});
        }
    } else if (tag == "pIndex") {
        IndexTerm term;
        term.index.name = text;
        const xml::Document& doc = loader.Doc();
        if (doc.HasAttribute(child, "Offset")) {
            term.offset = loader.IntegerAttribute(child, "Offset", name_);
            term.hasOffset = true;
        } else if (doc.HasAttribute(child, "pOffset")) {
            term.offsetRef.name = doc.AttributeValue(child, "pOffset");
        }
        indexes_.push_back(term);
    } else if (tag == "Length") {
        length_ = loader.Integer(child, name_);
        hasLength_ = true;
        if (length_ <= 0 || length_ > kMaxRegisterLength) {
            throw RuntimeException(std::string(name_),
                                   "register length " + std::string(text) + " is out of range");
        }
    } else if (tag == "pLength") {
        lengthRef_.name = text;
        hasLength_ = true;
    } else if (tag == "AccessMode") {
        bool known = true;
        accessMode_ = ParseAccessMode(text, known);
        if (!known) {
            map_.Warn("node " + std::string(name_) + ": unknown access mode '" + std::string(text) +
                      "', using RO");
        }
    } else if (tag == "pPort") {
        port_.name = text;
    } else if (tag == "Cachable") {
        cachingMode_ = ParseCachingMode(text);
    } else if (tag == "Endianess") {
        bigEndian_ = text == "BigEndian";
    } else if (tag == "Sign") {
        signed_ = text == "Signed";
    } else {
        return false;
    }
    return true;
}

void RegisterNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    for (Ref& ref : addressRefs_) {
        visit(ref, RefKind::Reading);
    }
    for (IndexTerm& term : indexes_) {
        visit(term.index, RefKind::Reading);
        if (!term.offsetRef.name.empty()) {
            visit(term.offsetRef, RefKind::Reading);
        }
    }
    if (!lengthRef_.name.empty()) {
        visit(lengthRef_, RefKind::Reading);
    }
    if (!port_.name.empty()) {
        visit(port_, RefKind::Reading);
    }
}

void RegisterNode::Finish(Loader&) {
    if (!hasLength_) {
        map_.Warn("node " + std::string(name_) + ": no Length, assuming 4 bytes");
    }
    if (port_) {
        portNode_ = dynamic_cast<PortNode*>(port_.node);
        if (portNode_ == nullptr) {
            throw RuntimeException(std::string(name_),
                                   "pPort '" + std::string(port_.name) + "' is not a Port node");
        }
    } else {
        map_.Warn("node " + std::string(name_) + ": no pPort, the node is not available");
    }
}

bool RegisterNode::IsVolatileSelf() const {
    return cachingMode_ == NoCache || Node::IsVolatileSelf();
}

EAccessMode RegisterNode::NaturalAccessMode() const {
    if (portNode_ == nullptr || !portNode_->IsConnected()) {
        return NA;
    }
    return accessMode_;
}

int64_t RegisterNode::GetAddress() {
    const auto lock = this->Lock();
    uint64_t address = static_cast<uint64_t>(address_);
    for (const Ref& ref : addressRefs_) {
        address += static_cast<uint64_t>(ref.node->ReadNumber(false).AsInteger(ref.name));
    }
    for (const IndexTerm& term : indexes_) {
        int64_t stride = term.offset;
        if (!term.hasOffset) {
            stride = term.offsetRef
                         ? term.offsetRef.node->ReadNumber(false).AsInteger(term.offsetRef.name)
                         : GetLength();
        }
        const int64_t index = term.index.node->ReadNumber(false).AsInteger(term.index.name);
        address += static_cast<uint64_t>(index) * static_cast<uint64_t>(stride);
    }
    return static_cast<int64_t>(address);
}

int64_t RegisterNode::GetLength() {
    const auto lock = this->Lock();
    if (!lengthRef_) {
        return length_;
    }
    const int64_t length = lengthRef_.node->ReadNumber(false).AsInteger(lengthRef_.name);
    if (length <= 0 || length > kMaxRegisterLength) {
        throw RuntimeException(std::string(name_),
                               "register length " + std::to_string(length) + " is out of range");
    }
    return length;
}

bool RegisterNode::IsValueCacheValid() const {
    const auto lock = this->Lock();
    return cache_->IsValid(map_.CacheEpoch());
}

void RegisterNode::FillCache(int64_t address) {
    cache_->address = address;
    cache_->epoch = map_.CacheEpoch();
    cache_->valid = true;
}

const std::vector<uint8_t>& RegisterNode::ReadRegister(bool ignoreCache) {
    RequireReadable();
    const int64_t address = GetAddress();
    const auto length = static_cast<size_t>(GetLength());
    RegisterCache& cache = *cache_;
    if (!ignoreCache && cache.IsValid(map_.CacheEpoch()) && cache.address == address &&
        cache.bytes.size() == length && !IsVolatile()) {
        return cache.bytes;
    }
    // Read straight into the cache when the register may be cached; a failing read leaves
    // the cache marked invalid.
    const bool caching = cachingMode_ != NoCache;
    std::vector<uint8_t>& target = caching ? cache.bytes : scratch_;
    cache.valid = cache.valid && !caching;
    target.assign(length, 0);
    portNode_->Read(target.data(), address, static_cast<int64_t>(length));
    if (caching) {
        FillCache(address);
    }
    return target;
}

void RegisterNode::WriteRegister(const std::vector<uint8_t>& bytes) {
    const int64_t address = GetAddress();
    portNode_->Write(bytes.data(), address, static_cast<int64_t>(bytes.size()));
    InvalidateWithDependents();
    if (cachingMode_ == WriteThrough) {
        cache_->bytes = bytes;
        FillCache(address);
    }
}

uint64_t RegisterNode::Assemble(const std::vector<uint8_t>& bytes) const {
    if (bytes.empty() || bytes.size() > 8) {
        throw RuntimeException(std::string(name_), "register length " +
                                                       std::to_string(bytes.size()) +
                                                       " cannot hold an integer (1 to 8 bytes)");
    }
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const size_t byte = bigEndian_ ? i : bytes.size() - 1 - i;
        value = (value << 8) | bytes[byte];
    }
    return value;
}

std::vector<uint8_t> RegisterNode::Disassemble(uint64_t value, size_t length) const {
    std::vector<uint8_t> bytes(length, 0);
    for (size_t i = 0; i < length; ++i) {
        const size_t byte = bigEndian_ ? length - 1 - i : i;
        bytes[byte] = static_cast<uint8_t>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

void RegisterNode::Get(uint8_t* buffer, int64_t length, bool, bool ignoreCache) {
    const auto lock = this->Lock();
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    if (buffer == nullptr || length < 0 || static_cast<size_t>(length) > bytes.size()) {
        throw InvalidArgumentException(std::string(name_),
                                       "buffer of " + std::to_string(length) +
                                           " bytes does not fit the register length " +
                                           std::to_string(bytes.size()));
    }
    std::memcpy(buffer, bytes.data(), static_cast<size_t>(length));
}

void RegisterNode::Set(const uint8_t* buffer, int64_t length, bool) {
    const auto lock = this->Lock();
    RequireWritable();
    const int64_t registerLength = GetLength();
    if (buffer == nullptr || length != registerLength) {
        throw InvalidArgumentException(std::string(name_),
                                       "buffer of " + std::to_string(length) +
                                           " bytes does not match the register length " +
                                           std::to_string(registerLength));
    }
    WriteRegister(std::vector<uint8_t>(buffer, buffer + length));
}

std::string RegisterNode::ToString(bool, bool ignoreCache) {
    const auto lock = this->Lock();
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

void RegisterNode::FromString(const std::string& text, bool verify) {
    const auto lock = this->Lock();
    const std::string_view digits = xml::Trim(text);
    std::vector<uint8_t> bytes(digits.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i) {
        const int high = HexDigit(digits[2 * i]);
        const int low = HexDigit(digits[2 * i + 1]);
        if (high < 0 || low < 0) {
            throw InvalidArgumentException(std::string(name_), "'" + text + "' is not hex text");
        }
        bytes[i] = static_cast<uint8_t>(high * 16 + low);
    }
    if (digits.size() % 2 != 0) {
        throw InvalidArgumentException(std::string(name_), "'" + text + "' has an odd digit count");
    }
    bytes.resize(static_cast<size_t>(GetLength()), 0);
    Set(bytes.data(), static_cast<int64_t>(bytes.size()), verify);
}

// ---- IntReg ----------------------------------------------------------------------------

bool IntRegNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    if (presentation_.Parse(tag, child, loader, name_)) {
        return true;
    }
    if (tag == "pSelected") {
        selected_.push_back(Ref{child.text});
    } else {
        return RegisterNode::ParseChild(tag, child, loader);
    }
    return true;
}

void IntRegNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    RegisterNode::VisitReferences(visit);
    for (Ref& ref : selected_) {
        visit(ref, RefKind::Selecting);
    }
}

Number IntRegNode::ReadNumber(bool ignoreCache) {
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    uint64_t value = Assemble(bytes);
    const size_t bits = bytes.size() * 8;
    if (signed_ && bits < 64 && (value >> (bits - 1)) & 1) {
        value |= ~uint64_t{0} << bits;
    }
    return Number::Integer(static_cast<int64_t>(value));
}

void IntRegNode::WriteNumber(Number value, bool verify) {
    const Number integer = Number::Integer(IntegerForWrite(value));
    PrepareWrite(integer, verify);
    WriteRegister(
        Disassemble(static_cast<uint64_t>(integer.integer), static_cast<size_t>(GetLength())));
}

namespace {

Number FieldMin(int bits, bool isSigned) {
    if (!isSigned || bits <= 0) {
        return Number::Integer(0);
    }
    return Number::Integer(bits >= 64 ? std::numeric_limits<int64_t>::min()
                                      : -(int64_t{1} << (bits - 1)));
}

Number FieldMax(int bits, bool isSigned) {
    if (bits >= 64 || (isSigned && bits >= 64)) {
        return Number::Integer(std::numeric_limits<int64_t>::max());
    }
    if (bits <= 0) {
        return Number::Integer(0);
    }
    return Number::Integer(isSigned ? (int64_t{1} << (bits - 1)) - 1
                                    : static_cast<int64_t>((uint64_t{1} << bits) - 1));
}

}  // namespace

Number IntRegNode::MinNumber() {
    return FieldMin(static_cast<int>(std::min<int64_t>(GetLength(), 8) * 8), signed_);
}

Number IntRegNode::MaxNumber() {
    return FieldMax(static_cast<int>(std::min<int64_t>(GetLength(), 8) * 8), signed_);
}

// ---- MaskedIntReg / StructEntry --------------------------------------------------------

bool MaskedIntRegNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    if (tag == "Bit") {
        lsb_ = msb_ = loader.Integer(child, name_);
    } else if (tag == "LSB") {
        lsb_ = loader.Integer(child, name_);
    } else if (tag == "MSB") {
        msb_ = loader.Integer(child, name_);
    } else {
        return IntRegNode::ParseChild(tag, child, loader);
    }
    return true;
}

void MaskedIntRegNode::Finish(Loader& loader) {
    IntRegNode::Finish(loader);
    const int64_t bits = FixedLength() * 8;
    if (lsb_ < 0 && msb_ < 0) {
        lsb_ = 0;
        msb_ = bits - 1;
        if (bigEndian_) {
            std::swap(lsb_, msb_);
        }
    } else if (lsb_ < 0 || msb_ < 0) {
        lsb_ = msb_ = std::max(lsb_, msb_);
    }
    // Big-endian files number bit 0 as the most significant bit of the first byte.
    int64_t low = bigEndian_ ? bits - 1 - lsb_ : lsb_;
    int64_t high = bigEndian_ ? bits - 1 - msb_ : msb_;
    if (low > high) {
        std::swap(low, high);  // tolerate files that swap LSB and MSB
    }
    fieldValid_ = bits <= 64 && low >= 0 && high >= low && high < bits;
    if (!fieldValid_) {
        map_.Warn("node " + std::string(name_) + ": bit field LSB " + std::to_string(lsb_) +
                  ", MSB " + std::to_string(msb_) + " does not fit the register");
        return;
    }
    low_ = static_cast<int>(low);
    high_ = static_cast<int>(high);
}

Number MaskedIntRegNode::ReadNumber(bool ignoreCache) {
    if (!fieldValid_) {
        throw RuntimeException(std::string(name_), "bit field does not fit the register");
    }
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    const int width = Width();
    uint64_t value = Assemble(bytes) >> low_;
    if (width < 64) {
        value &= (uint64_t{1} << width) - 1;
        if (signed_ && (value >> (width - 1)) & 1) {
            value |= ~uint64_t{0} << width;
        }
    }
    return Number::Integer(static_cast<int64_t>(value));
}

void MaskedIntRegNode::WriteNumber(Number value, bool verify) {
    if (!fieldValid_) {
        throw RuntimeException(std::string(name_), "bit field does not fit the register");
    }
    const Number integer = Number::Integer(IntegerForWrite(value));
    PrepareWrite(integer, verify);
    const auto length = static_cast<size_t>(FixedLength());
    uint64_t registerValue = 0;
    // Other fields of the register must survive, so read it fresh unless it is write-only.
    if (IsReadable(EffectiveAccessMode())) {
        const std::vector<uint8_t>& bytes = ReadRegister(true);
        registerValue = Assemble(bytes);
    }
    const int width = Width();
    const uint64_t fieldMask = width >= 64 ? ~uint64_t{0} : ((uint64_t{1} << width) - 1);
    const uint64_t mask = fieldMask << low_;
    registerValue =
        (registerValue & ~mask) | ((static_cast<uint64_t>(integer.integer) & fieldMask) << low_);
    WriteRegister(Disassemble(registerValue, length));
}

Number MaskedIntRegNode::MinNumber() {
    return FieldMin(Width(), signed_);
}
Number MaskedIntRegNode::MaxNumber() {
    return FieldMax(Width(), signed_);
}

// ---- FloatReg --------------------------------------------------------------------------

bool FloatRegNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    return presentation_.Parse(tag, child, loader, name_) ||
           RegisterNode::ParseChild(tag, child, loader);
}

void FloatRegNode::RequireValidLength() {
    const int64_t length = GetLength();
    if (length != 4 && length != 8) {
        throw RuntimeException(std::string(name_), "float register length must be 4 or 8, not " +
                                                       std::to_string(length));
    }
}

Number FloatRegNode::ReadNumber(bool ignoreCache) {
    RequireValidLength();
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    const uint64_t bits = Assemble(bytes);
    if (bytes.size() == 4) {
        float value;
        const auto narrow = static_cast<uint32_t>(bits);
        std::memcpy(&value, &narrow, sizeof value);
        return Number::Real(value);
    }
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return Number::Real(value);
}

void FloatRegNode::WriteNumber(Number value, bool verify) {
    RequireValidLength();
    const Number real = Number::Real(value.AsReal());
    PrepareWrite(real, verify);
    const int64_t length = GetLength();
    uint64_t bits = 0;
    if (length == 4) {
        const auto narrow = static_cast<float>(real.real);
        uint32_t narrowBits;
        std::memcpy(&narrowBits, &narrow, sizeof narrowBits);
        bits = narrowBits;
    } else {
        std::memcpy(&bits, &real.real, sizeof bits);
    }
    WriteRegister(Disassemble(bits, static_cast<size_t>(length)));
}

Number FloatRegNode::MinNumber() {
    return Number::Real(std::numeric_limits<double>::lowest());
}
Number FloatRegNode::MaxNumber() {
    return Number::Real(std::numeric_limits<double>::max());
}

// ---- StringReg -------------------------------------------------------------------------

std::string StringRegNode::GetValue(bool, bool ignoreCache) {
    const auto lock = this->Lock();
    const std::vector<uint8_t>& bytes = ReadRegister(ignoreCache);
    size_t end = 0;
    while (end < bytes.size() && bytes[end] != 0) {
        ++end;
    }
    return std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(end));
}

void StringRegNode::SetValue(const std::string& value, bool) {
    const auto lock = this->Lock();
    RequireWritable();
    const auto length = static_cast<size_t>(GetLength());
    if (value.size() > length) {
        throw OutOfRangeException(std::string(name_), "text of " + std::to_string(value.size()) +
                                                          " bytes exceeds the register length " +
                                                          std::to_string(length));
    }
    std::vector<uint8_t> bytes(length, 0);
    std::memcpy(bytes.data(), value.data(), value.size());
    WriteRegister(bytes);
}

}  // namespace RyGenApi::detail
