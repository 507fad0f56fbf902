// All rows of the kernel table as a list: tests loop over it, instead of having code of their own for each of the rows.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "row_calls.h"
#include "row_shapes.h"

struct TableRow {
    const char *name;
    bool plain;          // one build serves all slots
    void *const *builds; // six of them
    int pointers;        // among its parameters
    bool constants;      // one of these to values that are no raster
    bool oneImage;       // computes from an image and nothing else
    bool twoImages;      // from two of them
    // Null where the row is none of rectangles or rows.
    KrnStatus (*call)(const TableRow &row, const RowCall &arguments);

    KrnStatus operator()(const RowCall &arguments) const { return call(*this, arguments); }
    bool is(const std::string &start) const { return startsWith(name, start); }
    bool alpha() const { return std::string(name).find("AC4") != std::string::npos; }
    bool inPlace() const { return endsWith(name, "I"); }
};

template <class Signature> struct RowParameters;
template <class Result, class... Parameter> struct RowParameters<Result(Parameter...)> {
    static constexpr int pointers = (0 + ... + std::is_pointer_v<Parameter>);
};

template <class Signature, class... Listed> constexpr bool isOneOf = (... || std::is_same_v<Signature, Listed>);

template <class Signature> KrnStatus callTableRow(const TableRow &row, const RowCall &arguments)
{
    return call(row.name, *reinterpret_cast<const Kernel<Signature> *>(row.builds), arguments);
}

template <class Signature> TableRow tableRow(const char *name, bool plain, const Kernel<Signature> &kernel)
{
    constexpr int pointers = RowParameters<Signature>::pointers;
    const bool constants =
        isOneOf<Signature, orv::ConstantsKernel, orv::ConstantsScaledKernel, orv::FractionsInPlaceKernel> ||
        startsWith(name, "krnConvolve") || (pointers == 2 && (startsWith(name, "krnFill") || endsWith(name, "I")));
    TableRow row = {name,
                    plain,
                    reinterpret_cast<void *const *>(kernel.builds),
                    pointers,
                    constants,
                    isOneOf<Signature, orv::CopyKernel, orv::UnaryScaledKernel>,
                    isOneOf<Signature, orv::BinaryKernel, orv::BinaryScaledKernel, orv::BinaryRowKernel>,
                    nullptr};
    if constexpr (requires(const RowCall &c) { call(kernel, c); })
        row.call = callTableRow<Signature>;
    return row;
}

inline const std::vector<TableRow> &tableRows()
{
    static const std::vector<TableRow> rows = {
#define KRN(signature, name) tableRow(#name, false, orv::name),
#define KRN_PLAIN(signature, name) tableRow(#name, true, orv::name),
#include "kernels.def"
    };
    return rows;
}

// Those with builds of their own whose names start so.
inline std::vector<TableRow> tableRows(const std::string &start)
{
    std::vector<TableRow> found;
    for (const TableRow &row : tableRows())
        if (!row.plain && row.call != nullptr && row.is(start))
            found.push_back(row);
    return found;
}
