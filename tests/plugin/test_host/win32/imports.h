// The import table of a loaded library.
#pragma once

namespace corvel::test_host {

// What `module` calls under the name of an imported function is `replacement` from now on. Does
// nothing when it imports no such function.
void ReplaceImport(void* module, const char* name, void (*replacement)());

// Makes a piece of a loaded program writable while it lives.
class Writable {
 public:
  Writable(void* start, unsigned long long size);
  ~Writable();
  Writable(const Writable&) = delete;
  Writable& operator=(const Writable&) = delete;

 private:
  void* start_;
  unsigned long long size_;
  unsigned long before_ = 0;
};

}  // namespace corvel::test_host
