// The table of kernels made ready to run: as its model and in every form that the processor has.
#ifndef TAVU_KERNEL_TABLE_CASES_H
#define TAVU_KERNEL_TABLE_CASES_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct Form {
    std::string level;                 // "model", "exported", or a level of the processor
    std::function<void(int64_t)> run;  // calls the kernel so many times
};

// One kernel on noise of a common shape. All forms work on the same memory.
struct Case {
    size_t bytes = 0;  // that one call reads and writes
    std::vector<Form> forms;
    std::vector<uint8_t> *target = nullptr;  // all that a call writes
};

struct NamedCase {
    std::string name;
    std::string shape;
    std::function<Case()> prepare;
};

std::vector<NamedCase> kernel_cases();

// The first form whose result is not that of the model; null if there is none.
const Form *find_wrong_form(const Case &prepared);

#endif
