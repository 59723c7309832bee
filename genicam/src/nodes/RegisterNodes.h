// Nodes that live in device registers: the shared register block (address terms, length,
// port, access, caching) and the kinds that interpret its bytes.
#pragma once

#include <memory>

#include "nodes/Facades.h"

namespace RyGenApi::detail {

class PortNode;

// Bytes of the last register read. Entries of one StructReg share one instance.
struct RegisterCache {
    bool valid = false;
    uint64_t epoch = 0;  // the node map's cache epoch when the bytes were stored
    int64_t address = 0;
    std::vector<uint8_t> bytes;

    bool IsValid(uint64_t currentEpoch) const { return valid && epoch == currentEpoch; }
};

class RegisterNode : public Node, public virtual IRegister {
  public:
    RegisterNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal);

    // IRegister
    INode* GetNode() override { return this; }
    std::string ToString(bool verify, bool ignoreCache) override;
    void FromString(const std::string& text, bool verify) override;
    bool IsValueCacheValid() const override;
    void Set(const uint8_t* buffer, int64_t length, bool verify) override;
    void Get(uint8_t* buffer, int64_t length, bool verify, bool ignoreCache) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
    ECachingMode GetCachingMode() const override { return cachingMode_; }

    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    void Finish(Loader& loader) override;
    // Parses the register items of another element (a StructReg shared by its entries).
    void ParseRegisterBlock(const xml::Element& element, Loader& loader);
    void ShareCache(std::shared_ptr<RegisterCache> cache) { cache_ = std::move(cache); }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;
    void ClearCaches() override { cache_->valid = false; }
    bool IsVolatileSelf() const override;

    // Reads the whole register, through the cache when allowed. The bytes stay valid until
    // the next access to this register.
    const std::vector<uint8_t>& ReadRegister(bool ignoreCache);
    void WriteRegister(const std::vector<uint8_t>& bytes);
    // Marks the cached bytes as those of `address`, valid in the current epoch.
    void FillCache(int64_t address);
    // Register value assembled from up to 8 bytes in the register's byte order.
    uint64_t Assemble(const std::vector<uint8_t>& bytes) const;
    std::vector<uint8_t> Disassemble(uint64_t value, size_t length) const;
    int64_t FixedLength() const { return length_; }

    bool bigEndian_ = false;
    bool signed_ = false;

  private:
    struct IndexTerm {
        Ref index;
        Ref offsetRef;
        int64_t offset = 0;
        bool hasOffset = false;
    };

    int64_t address_ = 0;
    std::vector<Ref> addressRefs_;
    std::vector<IndexTerm> indexes_;
    int64_t length_ = 4;
    bool hasLength_ = false;
    Ref lengthRef_;
    EAccessMode accessMode_ = RO;
    ECachingMode cachingMode_ = WriteThrough;
    Ref port_;
    PortNode* portNode_ = nullptr;
    std::shared_ptr<RegisterCache> cache_ = std::make_shared<RegisterCache>();
    std::vector<uint8_t> scratch_;  // bytes of registers that are never cached
};

class IntRegNode : public RegisterNode {
  public:
    IntRegNode(NodeMapImpl& map, std::string_view name) : RegisterNode(map, name, intfIInteger) {}
    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    ERepresentation RepresentationValue() override {
        return presentation_.representation.value_or(PureNumber);
    }
    std::string UnitValue() override { return std::string(presentation_.unit); }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    Presentation presentation_;
    std::vector<Ref> selected_;

  public:
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
};

// MaskedIntReg and StructEntry: a bit field of one register.
class MaskedIntRegNode : public IntRegNode {
  public:
    using IntRegNode::IntRegNode;
    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    void Finish(Loader& loader) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;

  private:
    int Width() const { return high_ - low_ + 1; }
    int64_t lsb_ = -1;
    int64_t msb_ = -1;
    int low_ = 0;
    int high_ = 31;
    bool fieldValid_ = false;
};

class FloatRegNode : public RegisterNode {
  public:
    FloatRegNode(NodeMapImpl& map, std::string_view name) : RegisterNode(map, name, intfIFloat) {}
    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    bool HasIncrement() override { return false; }
    ERepresentation RepresentationValue() override {
        return presentation_.representation.value_or(PureNumber);
    }
    std::string UnitValue() override { return std::string(presentation_.unit); }
    EDisplayNotation NotationValue() override { return presentation_.notation; }
    int64_t PrecisionValue() override { return presentation_.precision; }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;

  private:
    void RequireValidLength();
    Presentation presentation_;
};

class StringRegNode : public RegisterNode, public virtual IString {
  public:
    StringRegNode(NodeMapImpl& map, std::string_view name) : RegisterNode(map, name, intfIString) {}
    INode* GetNode() override { return this; }
    std::string ToString(bool verify, bool ignoreCache) override {
        return GetValue(verify, ignoreCache);
    }
    void FromString(const std::string& text, bool verify) override { SetValue(text, verify); }
    void SetValue(const std::string& value, bool verify) override;
    std::string GetValue(bool verify, bool ignoreCache) override;
    int64_t GetMaxLength() override {
        const auto lock = this->Lock();
        return GetLength();
    }
};

using IntRegFacade = IntegerFacade<IntRegNode>;
using MaskedIntRegFacade = IntegerFacade<MaskedIntRegNode>;
using FloatRegFacade = FloatFacade<FloatRegNode>;

}  // namespace RyGenApi::detail
