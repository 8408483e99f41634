#pragma once

#include "StopSignals.h"

#include <string>

namespace Tessellum::Tool {

/*! The lines of standard input, until it ends or the program is told to end. For one thread. */
class StandardInput
{
public:
    explicit StandardInput(const StopSignals &stopSignals);

    /*! The next line without its end; false if there is none. */
    bool readLine(std::string &line);

private:
    const StopSignals &stop;
    std::string rest; ///< read and not yet given
    bool hasEnded = false;
};

} // namespace Tessellum::Tool
