// The public value interfaces expressed once over the numeric protocol of Node, so every
// integer-like or float-like node kind shares one implementation of IInteger / IFloat.
#pragma once

#include <cstdio>
#include <limits>
#include <string>

#include "nodes/Node.h"
#include "xml/XmlDocument.h"

namespace RyGenApi::detail {

std::string FormatReal(double value);
std::string FormatInteger(int64_t value, ERepresentation representation);

template <class Base>
class IntegerFacade : public Base, public virtual IInteger {
  public:
    using Base::Base;

    INode* GetNode() override { return this; }
    std::string ToString(bool verify, bool ignoreCache) override {
        return FormatInteger(GetValue(verify, ignoreCache), this->RepresentationValue());
    }
    void FromString(const std::string& text, bool verify) override {
        this->WriteChecked(this->ParseValueText(text, false), verify);
    }
    bool IsValueCacheValid() const override { return !this->IsVolatile(); }

    void SetValue(int64_t value, bool verify) override {
        this->WriteChecked(Number::Integer(value), verify);
    }
    int64_t GetValue(bool verify, bool ignoreCache) override {
        return this->ReadChecked(verify, ignoreCache).AsInteger(this->NameView());
    }
    int64_t GetMin() override {
        const auto lock = this->Lock();
        return std::max(imposedMin_, this->MinNumber().AsInteger(this->NameView()));
    }
    int64_t GetMax() override {
        const auto lock = this->Lock();
        return std::min(imposedMax_, this->MaxNumber().AsInteger(this->NameView()));
    }
    EIncMode GetIncMode() override { return fixedIncrement; }
    int64_t GetInc() override {
        const auto lock = this->Lock();
        return this->IncNumber().AsInteger(this->NameView());
    }
    ERepresentation GetRepresentation() override { return this->RepresentationValue(); }
    std::string GetUnit() override { return this->UnitValue(); }
    void ImposeMin(int64_t value) override {
        const auto lock = this->Lock();
        imposedMin_ = value;
    }
    void ImposeMax(int64_t value) override {
        const auto lock = this->Lock();
        imposedMax_ = value;
    }

  private:
    int64_t imposedMin_ = std::numeric_limits<int64_t>::min();
    int64_t imposedMax_ = std::numeric_limits<int64_t>::max();
};

template <class Base>
class FloatFacade : public Base, public virtual IFloat {
  public:
    using Base::Base;

    INode* GetNode() override { return this; }
    std::string ToString(bool verify, bool ignoreCache) override {
        return FormatReal(GetValue(verify, ignoreCache));
    }
    void FromString(const std::string& text, bool verify) override {
        this->WriteChecked(this->ParseValueText(text, true), verify);
    }
    bool IsValueCacheValid() const override { return !this->IsVolatile(); }

    void SetValue(double value, bool verify) override {
        this->WriteChecked(Number::Real(value), verify);
    }
    double GetValue(bool verify, bool ignoreCache) override {
        return this->ReadChecked(verify, ignoreCache).AsReal();
    }
    double GetMin() override {
        const auto lock = this->Lock();
        return std::max(imposedMin_, this->MinNumber().AsReal());
    }
    double GetMax() override {
        const auto lock = this->Lock();
        return std::min(imposedMax_, this->MaxNumber().AsReal());
    }
    bool HasInc() override { return this->HasIncrement(); }
    EIncMode GetIncMode() override {
        const auto lock = this->Lock();
        return HasInc() ? fixedIncrement : noIncrement;
    }
    double GetInc() override {
        const auto lock = this->Lock();
        if (!HasInc()) {
            throw LogicalErrorException(std::string(this->NameView()), "node has no increment");
        }
        return this->IncNumber().AsReal();
    }
    ERepresentation GetRepresentation() override { return this->RepresentationValue(); }
    std::string GetUnit() override { return this->UnitValue(); }
    EDisplayNotation GetDisplayNotation() override { return this->NotationValue(); }
    int64_t GetDisplayPrecision() override { return this->PrecisionValue(); }
    void ImposeMin(double value) override {
        const auto lock = this->Lock();
        imposedMin_ = value;
    }
    void ImposeMax(double value) override {
        const auto lock = this->Lock();
        imposedMax_ = value;
    }

  private:
    double imposedMin_ = -std::numeric_limits<double>::infinity();
    double imposedMax_ = std::numeric_limits<double>::infinity();
};

}  // namespace RyGenApi::detail
