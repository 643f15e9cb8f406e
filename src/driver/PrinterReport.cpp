#include "driver/PrinterReport.h"

#include "show/FaultTexts.h"

namespace zolex {

void PrinterReport::fault(const Fault& fault) {
    for (const FaultText& text : show::faultTexts(fault)) {
        switch (text.place) {
        case FaultText::Place::errorBlock:
            printer_.errorBlock(text.text);
            break;
        case FaultText::Place::output:
            printer_.print(text.text, text.level);
            break;
        case FaultText::Place::error:
            printer_.console().writeError(text.text);
            break;
        }
    }
}

} // namespace zolex
