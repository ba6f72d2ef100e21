#include "tools/imageexamples.h"

#include <QCoreApplication>

namespace zentrik {

const QList<ImageExample> &imageExamples()
{
    static const QList<ImageExample> examples = {
        { QCoreApplication::translate("ImageExamples", "Logo"),
            QCoreApplication::translate("ImageExamples",
                "Create a modern and sleek logo for a sustainable energy company named 'EcoVolt'. The logo should "
                "incorporate elements of a lightning bolt and a leaf, using shades of green and blue. The design "
                "should be minimalist yet impactful, suitable for both digital and print media.") },
        { QCoreApplication::translate("ImageExamples", "Product Image"),
            QCoreApplication::translate("ImageExamples",
                "Generate a photorealistic image of a futuristic smartwatch. The watch should have a sleek, curved "
                "glass display that extends to the edges. Show holographic projections of health stats and "
                "notifications floating above the watch face. The watch band should be made of a textured, metallic "
                "material. Place the watch on a reflective surface with soft, futuristic lighting.") },
        { QCoreApplication::translate("ImageExamples", "E-commerce Banner"),
            QCoreApplication::translate("ImageExamples",
                "Design a vibrant and eye-catching e-commerce banner for a summer sale. The banner should feature a "
                "tropical beach scene with crystal clear water and palm trees. Incorporate summer-related products "
                "like sunglasses, beach balls, and flip-flops scattered artistically across the sand. Use bold, "
                "sans-serif typography for the text 'Summer Blowout Sale - Up to 70% Off!' with the text color "
                "contrasting well against the background.") },
        { QCoreApplication::translate("ImageExamples", "Social Media Post"),
            QCoreApplication::translate("ImageExamples",
                "Create an inspirational social media post image featuring a serene mountain landscape at sunset. In "
                "the foreground, show a silhouette of a person standing on a cliff edge, arms raised in triumph. "
                "Overlay the image with the quote 'The only limit is the one you set yourself' in a modern, easily "
                "readable font. Use a color scheme that complements the warm sunset tones.") },
        { QCoreApplication::translate("ImageExamples", "Book Cover"),
            QCoreApplication::translate("ImageExamples",
                "Design a captivating book cover for a fantasy novel titled 'The Enchanted Codex'. The cover should "
                "depict an ancient, ornate book floating in a mystical forest clearing. Magical particles and wisps "
                "of light should be emanating from the book's open pages. Incorporate elements of nature like vines "
                "and leaves intertwining with the book. Use a rich color palette with deep greens, purples, and gold "
                "accents. The title should be prominently displayed in an elegant, fantasy-style font.") },
    };
    return examples;
}

} // namespace zentrik
