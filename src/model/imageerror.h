#pragma once

#include "fal/falerror.h"
#include "model/apierror.h"

#include <QString>

#include <variant>

namespace zentrik {

// A failure outside the other vocabularies: a domain, a code and its description.
struct DomainError
{
    QString domain;
    int code = 0;
    QString description;

    friend bool operator==(const DomainError &, const DomainError &) = default;
};

// Why an image operation failed: an APIError of the OpenAI and Together paths, a failure of
// the fal client passed on as it stands, or the fal path's "ImageGeneration" error.
class ImageError
{
public:
    using Reason = std::variant<APIError, fal::FalError, fal::DecodingError, TransportError, DomainError>;

    // NOLINTBEGIN(google-explicit-constructor): errors are values
    ImageError(APIError error)
        : m_reason(std::move(error))
    { }
    ImageError(APIError::Kind kind)
        : m_reason(APIError(kind))
    { }
    ImageError(const fal::ClientError &error);
    ImageError(DomainError error)
        : m_reason(std::move(error))
    { }
    // NOLINTEND(google-explicit-constructor)

    // The fal path's failure when the result holds no picture address.
    [[nodiscard]] static ImageError noImageUrl();
    static constexpr const char *imageGenerationDomain = "ImageGeneration";

    [[nodiscard]] const Reason &reason() const { return m_reason; }
    template<typename T> [[nodiscard]] const T *get() const { return std::get_if<T>(&m_reason); }

    // The error's description, as a screen shows it.
    [[nodiscard]] QString message() const;

    friend bool operator==(const ImageError &, const ImageError &) = default;

private:
    Reason m_reason;
};

} // namespace zentrik
