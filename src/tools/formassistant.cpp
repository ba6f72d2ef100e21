#include "formassistant.h"

namespace zentrik {

const InputField *FormAssistant::field(const QString &label) const
{
    for (const InputField &input : inputs) {
        if (input.label == label) {
            return &input;
        }
    }
    return nullptr;
}

} // namespace zentrik
