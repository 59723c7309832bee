// Every failure of the node map surfaces as one of these. They derive from std::exception so
// a caller that only knows the standard library can still log what() in full.
#pragma once

#include <exception>
#include <string>

namespace RyGenApi {

class GenericException : public std::exception {
  public:
    GenericException(const char* kind, std::string nodeName, std::string message);
    const char* what() const noexcept override { return text_.c_str(); }
    const std::string& GetDescription() const { return message_; }
    const std::string& GetNodeName() const { return nodeName_; }

  private:
    std::string nodeName_;
    std::string message_;
    std::string text_;
};

#define RY_GENAPI_EXCEPTION(ClassName)                                                 \
    class ClassName : public GenericException {                                        \
      public:                                                                          \
        ClassName(std::string nodeName, std::string message)                           \
            : GenericException(#ClassName, std::move(nodeName), std::move(message)) {} \
    }

RY_GENAPI_EXCEPTION(InvalidArgumentException);
RY_GENAPI_EXCEPTION(OutOfRangeException);
RY_GENAPI_EXCEPTION(PropertyException);
RY_GENAPI_EXCEPTION(RuntimeException);
RY_GENAPI_EXCEPTION(LogicalErrorException);
RY_GENAPI_EXCEPTION(AccessException);
RY_GENAPI_EXCEPTION(TimeoutException);

#undef RY_GENAPI_EXCEPTION

}  // namespace RyGenApi
