#pragma once

#include <new>

#include "nuv/exceptions.h"

namespace ostrevan {

/// No service is registered under the identifier asked for.
class exception_service_not_found : public nuv::fixed_exception {
public:
    exception_service_not_found() noexcept : fixed_exception("Service not found") {}

protected:
    explicit exception_service_not_found(const char* text) noexcept : fixed_exception(text) {}
};

/// The service is there but too old to offer the extension asked for.
class exception_service_extension_not_found : public exception_service_not_found {
public:
    exception_service_extension_not_found() noexcept : exception_service_not_found("Service extension not found") {}
};

}  // namespace ostrevan

namespace ostrevan_io {

/// Base of what reading and writing can fail with.
class exception_io : public nuv::fixed_exception {
public:
    exception_io() noexcept : fixed_exception("I/O error") {}

protected:
    explicit exception_io(const char* text) noexcept : fixed_exception(text) {}
};

/// The bytes are not of the format they are read as.
class exception_io_data : public exception_io {
public:
    exception_io_data() noexcept : exception_io("Unsupported format or corrupted file") {}
};

/// A stream ended before the bytes that its format promises.
class exception_io_data_truncation : public exception_io_data {
public:
    [[nodiscard]] const char* what() const noexcept override { return "Unexpected end of file"; }
};

}  // namespace ostrevan_io
