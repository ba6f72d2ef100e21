#include "assistanttable.h"

namespace zentrik {

namespace {

using F = InputField;

AssistantTable buildMarketingAssistants()
{
    QList<FormAssistant> entries;

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Blog Post Writing"),
        .description = QStringLiteral("Create engaging blog posts with AI-powered assistance"),
        .color = QStringLiteral("yellow"),
        .inputs = {
            F::text(QStringLiteral("Blog Title"), QStringLiteral("Enter your blog title or topic")),
            F::textArea(QStringLiteral("Blog Outline"), QStringLiteral("Add outline or main points")),
            F::select(QStringLiteral("Tone"),
                      {QStringLiteral("Informative"), QStringLiteral("Humorous"),
                       QStringLiteral("Question"), QStringLiteral("Minimal")}),
            F::select(QStringLiteral("Writing Style"),
                      {QStringLiteral("Expository"), QStringLiteral("Descriptive"),
                       QStringLiteral("Narrative")}),
            F::text(QStringLiteral("Target Audience"),
                    QStringLiteral("Target Audience? e.g., Students, Designers")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create an engaging and informative blog post on the given topic."),
            .structure = {
                QStringLiteral("Craft an attention-grabbing headline"),
                QStringLiteral("Write a compelling introduction that hooks the reader"),
                QStringLiteral("Develop 3-5 main points with supporting details"),
                QStringLiteral("Include relevant examples or case studies"),
                QStringLiteral("Conclude with a summary and call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a conversational yet professional tone"),
                QStringLiteral("Use clear and concise language"),
                QStringLiteral("Incorporate relevant keywords naturally"),
            },
            .closing = QStringLiteral("End with a thought-provoking question or statement that encourages reader engagement."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("User Persona Generator"),
        .description = QStringLiteral("Quickly identify your ideal customer without conducting dozens of interviews"),
        .color = QStringLiteral("red"),
        .inputs = {
            F::text(QStringLiteral("Product/Service"), QStringLiteral("Describe your product or service")),
            F::textArea(QStringLiteral("Target Market"), QStringLiteral("Describe your target market")),
            F::text(QStringLiteral("Key Pain Points"), QStringLiteral("List main customer pain points")),
            F::select(QStringLiteral("Persona Type"),
                      {QStringLiteral("B2C"), QStringLiteral("B2B"), QStringLiteral("Both")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create a detailed user persona based on the provided information."),
            .structure = {
                QStringLiteral("Develop a fictional name and basic demographics"),
                QStringLiteral("Describe their background and career"),
                QStringLiteral("Outline their goals and challenges"),
                QStringLiteral("Detail their preferences and behaviors"),
                QStringLiteral("Explain how your product/service fits their needs"),
            },
            .toneGuidelines = {
                QStringLiteral("Be specific and realistic in details"),
                QStringLiteral("Use empathetic language to describe the persona"),
                QStringLiteral("Maintain a professional and objective tone"),
            },
            .closing = QStringLiteral("Summarize how this persona can guide marketing and product development strategies."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Value Proposition Generator"),
        // Speaks of a business plan rather than a value proposition; kept as the card has it.
        .description = QStringLiteral("Develop a clear action plan to transform your idea into a profitable business"),
        .color = QStringLiteral("indigo"),
        .inputs = {
            F::text(QStringLiteral("Product/Service")),
            F::textArea(QStringLiteral("Key Benefits"), QStringLiteral("List the main benefits of your offering")),
            F::text(QStringLiteral("Target Market")),
            F::textArea(QStringLiteral("Competitive Advantage"), QStringLiteral("What makes your offering unique?")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Develop a clear and compelling value proposition for the given product or service."),
            .structure = {
                QStringLiteral("Identify the target customer"),
                QStringLiteral("Define the problem or need being addressed"),
                QStringLiteral("Explain the unique benefits of the product/service"),
                QStringLiteral("Differentiate from competitors"),
                QStringLiteral("Craft a concise value statement"),
            },
            .toneGuidelines = {
                QStringLiteral("Be clear and specific about the value offered"),
                QStringLiteral("Use persuasive language without being overly salesy"),
                QStringLiteral("Focus on benefits rather than features"),
            },
            .closing = QStringLiteral("Summarize the value proposition in a single, powerful sentence."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Business Ideas Generator"),
        .description = QStringLiteral("Receive 10 unique and profitable business ideas to kickstart your entrepreneurial journey"),
        .color = QStringLiteral("pink"),
        .inputs = {
            F::text(QStringLiteral("Industry"), QStringLiteral("Specify an industry or leave blank for diverse ideas")),
            F::select(QStringLiteral("Investment Level"),
                      {QStringLiteral("Low"), QStringLiteral("Medium"), QStringLiteral("High")}),
            F::select(QStringLiteral("Business Type"),
                      {QStringLiteral("Online"), QStringLiteral("Offline"), QStringLiteral("Hybrid")}),
            F::text(QStringLiteral("Skills/Interests"), QStringLiteral("List relevant skills or interests")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate 10 unique and profitable business ideas based on the given context or industry."),
            .structure = {
                QStringLiteral("List 10 distinct business ideas"),
                QStringLiteral("For each idea, provide a brief description"),
                QStringLiteral("Identify the target market for each idea"),
                QStringLiteral("Highlight the potential profitability and scalability"),
                QStringLiteral("Suggest a unique selling proposition for each idea"),
            },
            .toneGuidelines = {
                QStringLiteral("Be creative and think outside the box"),
                QStringLiteral("Maintain a balance between innovation and practicality"),
                QStringLiteral("Use clear and concise language to describe each idea"),
            },
            .closing = QStringLiteral("Conclude with a brief assessment of the most promising idea and why."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Marketing Problem Solver"),
        .description = QStringLiteral("Get 10 creative solutions to overcome any marketing challenge"),
        .color = QStringLiteral("teal"),
        .inputs = {
            F::textArea(QStringLiteral("Marketing Challenge"), QStringLiteral("Describe your specific marketing problem")),
            F::text(QStringLiteral("Target Audience"), QStringLiteral("Describe your target audience")),
            F::text(QStringLiteral("Budget Constraints"), QStringLiteral("Specify any budget limitations")),
            F::select(QStringLiteral("Marketing Channel"),
                      {QStringLiteral("All Channels"), QStringLiteral("Digital Only"),
                       QStringLiteral("Traditional Only")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Provide 10 creative solutions to overcome the specified marketing challenge."),
            .structure = {
                QStringLiteral("Clearly state the marketing problem"),
                QStringLiteral("List 10 unique solutions"),
                QStringLiteral("For each solution, explain the approach and potential impact"),
                QStringLiteral("Suggest implementation steps for each solution"),
                QStringLiteral("Identify potential challenges or considerations"),
            },
            .toneGuidelines = {
                QStringLiteral("Be solution-oriented and positive"),
                QStringLiteral("Use a mix of proven strategies and innovative approaches"),
                QStringLiteral("Maintain a professional and authoritative tone"),
            },
            .closing = QStringLiteral("Summarize the most promising solutions and suggest next steps."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Slogan Generator"),
        .description = QStringLiteral("Generate 30 attention-grabbing taglines to captivate your audience"),
        .color = QStringLiteral("orange"),
        .inputs = {
            F::text(QStringLiteral("Brand/Product Name"), QStringLiteral("Enter your brand or product name")),
            F::textArea(QStringLiteral("Key Features/Benefits"), QStringLiteral("List main features or benefits")),
            F::text(QStringLiteral("Target Audience")),
            F::select(QStringLiteral("Desired Tone"),
                      {QStringLiteral("Professional"), QStringLiteral("Playful"), QStringLiteral("Edgy"),
                       QStringLiteral("Inspirational")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate 30 attention-grabbing taglines for the given brand or product."),
            .structure = {
                QStringLiteral("List 30 unique and catchy slogans"),
                QStringLiteral("Ensure each slogan is concise (preferably under 10 words)"),
                QStringLiteral("Incorporate brand values or unique selling points where possible"),
                QStringLiteral("Vary the style and tone across the slogans"),
                QStringLiteral("Include a mix of emotional and rational appeals"),
            },
            .toneGuidelines = {
                QStringLiteral("Be creative and memorable"),
                QStringLiteral("Use wordplay, alliteration, or rhyme where appropriate"),
                QStringLiteral("Ensure slogans are easy to understand and remember"),
            },
            .closing = QStringLiteral("Highlight the top 3 slogans that best represent the brand and explain why."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Business Idea Validator"),
        .description = QStringLiteral("Obtain honest feedback on the viability of your business idea"),
        .color = QStringLiteral("cyan"),
        .inputs = {
            F::textArea(QStringLiteral("Business Idea"), QStringLiteral("Describe your business idea in detail")),
            F::text(QStringLiteral("Target Market"), QStringLiteral("Describe your intended target market")),
            F::textArea(QStringLiteral("Competitive Landscape"), QStringLiteral("List known competitors or similar offerings")),
            F::select(QStringLiteral("Development Stage"),
                      {QStringLiteral("Concept"), QStringLiteral("Prototype"), QStringLiteral("Early Market"),
                       QStringLiteral("Established")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Provide an honest and thorough assessment of the given business idea's viability."),
            .structure = {
                QStringLiteral("Summarize the business idea"),
                QStringLiteral("Analyze the target market and potential demand"),
                QStringLiteral("Evaluate the competitive landscape"),
                QStringLiteral("Assess the financial feasibility and potential profitability"),
                QStringLiteral("Identify potential risks and challenges"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain an objective and unbiased perspective"),
                QStringLiteral("Use data-driven language where possible"),
                QStringLiteral("Be constructive in criticism and generous in praise"),
            },
            .closing = QStringLiteral("Provide a final verdict on the idea's viability and suggestions for improvement."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Business Plan Generator"),
        .description = QStringLiteral("Unlock 10 key marketing strategies to accelerate your path to profitability"),
        .color = QStringLiteral("green"),
        .inputs = {
            F::text(QStringLiteral("Business Name"), QStringLiteral("Enter your business name")),
            F::textArea(QStringLiteral("Business Concept"), QStringLiteral("Briefly describe your business concept")),
            F::text(QStringLiteral("Industry"), QStringLiteral("Specify the industry")),
            F::select(QStringLiteral("Business Stage"),
                      {QStringLiteral("Startup"), QStringLiteral("Early Growth"), QStringLiteral("Expansion"),
                       QStringLiteral("Mature")}),
            F::textArea(QStringLiteral("Key Objectives"), QStringLiteral("List your main business objectives")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create a comprehensive outline for a business plan, including 10 key marketing strategies."),
            .structure = {
                QStringLiteral("Executive Summary"),
                QStringLiteral("Company Description"),
                QStringLiteral("Market Analysis"),
                QStringLiteral("Organization and Management"),
                QStringLiteral("Service or Product Line"),
                QStringLiteral("Marketing and Sales Strategies (include 10 specific strategies)"),
                QStringLiteral("Funding Request"),
                QStringLiteral("Financial Projections"),
                QStringLiteral("Appendix"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a professional and confident tone"),
                QStringLiteral("Be specific and use data where possible"),
                QStringLiteral("Focus on clarity and conciseness"),
            },
            .closing = QStringLiteral("Summarize the most crucial elements of the business plan and its potential for success."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Content Ideas Generator"),
        .description = QStringLiteral("Discover 12 unique content ideas to promote your product organically"),
        .color = QStringLiteral("yellow"),
        .inputs = {
            F::text(QStringLiteral("Product/Service")),
            F::text(QStringLiteral("Target Audience")),
            F::select(QStringLiteral("Content Type"),
                      {QStringLiteral("All Types"), QStringLiteral("Blog Posts"), QStringLiteral("Social Media"),
                       QStringLiteral("Video"), QStringLiteral("Podcast")}),
            F::textArea(QStringLiteral("Key Features/Benefits"),
                        QStringLiteral("List main features or benefits of your offering")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate 12 unique content ideas to promote the given product or service organically."),
            .structure = {
                QStringLiteral("List 12 diverse content ideas"),
                QStringLiteral("For each idea, provide a brief description and potential headline"),
                QStringLiteral("Suggest the most suitable content format (blog post, video, infographic, etc.)"),
                QStringLiteral("Identify the target audience for each content piece"),
                QStringLiteral("Explain how each idea contributes to product promotion"),
            },
            .toneGuidelines = {
                QStringLiteral("Be creative and think beyond conventional content types"),
                QStringLiteral("Ensure ideas are engaging and shareable"),
                QStringLiteral("Maintain a balance between educational and promotional content"),
            },
            .closing = QStringLiteral("Recommend a content calendar or publishing order for the ideas."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Legal Document Generator"),
        .description = QStringLiteral("Create essential legal documents for your business"),
        .color = QStringLiteral("purple"),
        .inputs = {
            F::text(QStringLiteral("Business Name")),
            F::select(QStringLiteral("Business Structure"),
                      {QStringLiteral("Sole Proprietorship"), QStringLiteral("LLC"), QStringLiteral("Corporation"),
                       QStringLiteral("Partnership")}),
            F::select(QStringLiteral("Document Type"),
                      {QStringLiteral("Terms of Service"), QStringLiteral("Privacy Policy"), QStringLiteral("NDA"),
                       QStringLiteral("Employment Contract")}),
            F::text(QStringLiteral("State/Country"), QStringLiteral("Enter applicable state or country")),
            F::textArea(QStringLiteral("Key Provisions"), QStringLiteral("List any specific provisions you want to include")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate a legal document based on the provided information."),
            .structure = {
                QStringLiteral("Create an introduction and purpose statement"),
                QStringLiteral("Define key terms used in the document"),
                QStringLiteral("Outline the main provisions and clauses"),
                QStringLiteral("Include any specific provisions requested"),
                QStringLiteral("Add standard legal language and disclaimers"),
                QStringLiteral("Provide signature lines and date fields"),
            },
            .toneGuidelines = {
                QStringLiteral("Use formal legal language"),
                QStringLiteral("Ensure clarity and precision in all statements"),
                QStringLiteral("Include necessary legal jargon with explanations where possible"),
                QStringLiteral("Maintain a neutral and objective tone"),
            },
            .closing = QStringLiteral("Conclude with a statement advising review by a licensed attorney in the applicable jurisdiction."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Bootstrapped Marketing Plan"),
        .description = QStringLiteral("Create a low-budget, high-impact marketing plan for your business"),
        .color = QStringLiteral("orange"),
        .inputs = {
            F::text(QStringLiteral("Product/Service Name"), QStringLiteral("Enter your product or service name")),
            F::textArea(QStringLiteral("Unique Value Proposition"), QStringLiteral("Describe your unique value proposition")),
            F::text(QStringLiteral("Target Audience")),
            F::text(QStringLiteral("Monthly Marketing Budget"), QStringLiteral("Enter your monthly marketing budget")),
            F::select(QStringLiteral("Primary Goal"),
                      {QStringLiteral("User Acquisition"), QStringLiteral("Revenue Growth"),
                       QStringLiteral("Brand Awareness")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate a bootstrapped marketing plan focused on low-cost, high-impact strategies."),
            .structure = {
                QStringLiteral("Outline key marketing objectives aligned with the primary goal"),
                QStringLiteral("Suggest 5-7 cost-effective marketing tactics"),
                QStringLiteral("Provide a content marketing strategy with topic ideas"),
                QStringLiteral("Recommend social media platforms and posting strategies"),
                QStringLiteral("Suggest partnership or cross-promotion opportunities"),
                QStringLiteral("Outline a basic SEO strategy for organic growth"),
                QStringLiteral("Provide metrics to track for measuring success"),
            },
            .toneGuidelines = {
                QStringLiteral("Focus on practical, actionable strategies"),
                QStringLiteral("Emphasize creativity and resourcefulness"),
                QStringLiteral("Maintain a balance between short-term wins and long-term growth"),
                QStringLiteral("Use language that resonates with indie hackers and bootstrappers"),
            },
            .closing = QStringLiteral("Summarize the key strategies and provide a 90-day action plan for implementation."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("SWOT Analysis Generator"),
        .description = QStringLiteral("Conduct market research to shape your business strategy with a detailed SWOT analysis"),
        .color = QStringLiteral("blue"),
        .inputs = {
            F::text(QStringLiteral("Company/Product Name"), QStringLiteral("Enter your company or product name")),
            F::textArea(QStringLiteral("Business Description"), QStringLiteral("Briefly describe your business or product")),
            F::text(QStringLiteral("Industry")),
            F::textArea(QStringLiteral("Key Competitors"), QStringLiteral("List main competitors")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Conduct a comprehensive SWOT analysis for the given business or product."),
            .structure = {
                QStringLiteral("Identify key Strengths"),
                QStringLiteral("List potential Weaknesses"),
                QStringLiteral("Explore Opportunities in the market"),
                QStringLiteral("Analyze potential Threats"),
                QStringLiteral("Provide strategic recommendations based on the SWOT analysis"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain an objective and analytical tone"),
                QStringLiteral("Be thorough and consider both internal and external factors"),
                QStringLiteral("Use clear and concise language for each point"),
            },
            .closing = QStringLiteral("Summarize the most critical findings and their implications for business strategy."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Product Description Generator"),
        .description = QStringLiteral("Craft compelling product descriptions effortlessly"),
        .color = QStringLiteral("purple"),
        .inputs = {
            F::text(QStringLiteral("Product Name"), QStringLiteral("Enter the product name")),
            F::textArea(QStringLiteral("Key Features"), QStringLiteral("List the main features of the product")),
            F::text(QStringLiteral("Target Audience"), QStringLiteral("Describe the ideal customer for this product")),
            F::select(QStringLiteral("Tone"),
                      {QStringLiteral("Professional"), QStringLiteral("Casual"), QStringLiteral("Luxurious"),
                       QStringLiteral("Technical")}),
            F::textArea(QStringLiteral("Unique Selling Points"), QStringLiteral("What makes this product stand out?")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Craft a compelling product description for the given item or service."),
            .structure = {
                QStringLiteral("Write an attention-grabbing headline"),
                QStringLiteral("Provide a concise overview of the product"),
                QStringLiteral("List key features and benefits"),
                QStringLiteral("Include relevant specifications or technical details"),
                QStringLiteral("Add a persuasive call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Use vivid and descriptive language"),
                QStringLiteral("Focus on benefits rather than just features"),
                QStringLiteral("Maintain a tone appropriate for the target audience and product type"),
            },
            .closing = QStringLiteral("End with a statement that reinforces the product's value and encourages purchase."),
        },
    });

    return AssistantTable(std::move(entries));
}

} // namespace

const AssistantTable &marketingAssistants()
{
    static const AssistantTable table = buildMarketingAssistants();
    return table;
}

} // namespace zentrik
