#pragma once

namespace platform {

/// Deletes what a C library handed out: `std::unique_ptr<CURL, ReleasedBy<&curl_easy_cleanup>>`.
template <auto Release> struct ReleasedBy {
  template <class T> void operator()(T *released) const noexcept { Release(released); }
};

} // namespace platform
