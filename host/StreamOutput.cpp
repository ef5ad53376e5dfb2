#include "host/StreamOutput.h"

#include "host/PrinterDocument.h"
#include "host/ResultFormats.h"

namespace Host {

std::string StreamOutput::newLines(const RunResult& soFar)
{
    std::string lines;
    for (std::size_t i = 0; i < soFar.printers.size(); ++i) {
        const Printer& printer = soFar.printers[i];
        if (i < written_.size() && written_[i] == printer)
            continue;
        lines += jsonLine(documentOf(printer));
        if (i < written_.size())
            written_[i] = printer;
        else
            written_.push_back(printer);
    }
    return lines;
}

} // namespace Host
