// SPDX-License-Identifier: MIT
#include "platform/image/kernel_registry.h"

#include "platform/log.h"

#include <cctype>
#include <utility>

namespace plyra {
namespace {

struct Token {
    std::string text; // empty at the end of the source
    int line = 1;
};

/// Splits kernel source into identifiers and one-character symbols, skipping blanks and
/// comments.
/// Threads: one compilation on one thread.
class KernelLexer {
public:
    explicit KernelLexer(std::string_view source) : m_source(source) {}

    Token next()
    {
        skipBlanksAndComments();
        Token token{{}, m_line};
        if (m_pos >= m_source.size())
            return token;
        const char c = m_source[m_pos];
        if (isIdentifierChar(c)) {
            while (m_pos < m_source.size() && isIdentifierChar(m_source[m_pos]))
                token.text += m_source[m_pos++];
        } else {
            token.text = std::string(1, c);
            ++m_pos;
        }
        return token;
    }

private:
    static bool isIdentifierChar(char c)
    {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.';
    }

    void skipBlanksAndComments()
    {
        while (m_pos < m_source.size()) {
            if (m_source.compare(m_pos, 2, "//") == 0)
                skipUntil("\n");
            else if (m_source.compare(m_pos, 2, "/*") == 0)
                skipUntil("*/");
            else if (std::isspace(static_cast<unsigned char>(m_source[m_pos])))
                advance();
            else
                return;
        }
    }

    void skipUntil(std::string_view end)
    {
        while (m_pos < m_source.size() && m_source.compare(m_pos, end.size(), end) != 0)
            advance();
        for (std::size_t k = 0; k < end.size() && m_pos < m_source.size(); ++k)
            advance();
    }

    void advance()
    {
        if (m_source[m_pos++] == '\n')
            ++m_line;
    }

    std::string_view m_source;
    std::size_t m_pos = 0;
    int m_line = 1;
};

std::string signatureText(const std::vector<KernelArgumentType>& signature)
{
    std::string text = "(";
    for (std::size_t k = 0; k < signature.size(); ++k) {
        if (k > 0)
            text += ", ";
        text += signature[k] == KernelArgumentType::Sampler ? "sampler" : "float";
    }
    return text + ")";
}

/// Reads "kernel <type> <name>(<arguments>);" declarations one after another.
/// Threads: one compilation on one thread; the registry is locked per look-up.
class KernelParser {
public:
    KernelParser(std::string_view source, const KernelRegistry& registry)
        : m_lexer(source)
        , m_registry(registry)
    {
        m_token = m_lexer.next();
    }

    KernelCompileResult parse()
    {
        KernelCompileResult result;
        while (!m_token.text.empty()) {
            std::shared_ptr<const Kernel> kernel = parseDeclaration();
            if (!kernel) {
                result.kernels.clear();
                result.errorMessage = m_error;
                return result;
            }
            result.kernels.push_back(std::move(kernel));
        }
        if (result.kernels.empty())
            result.errorMessage = "kernel source declares no kernel";
        return result;
    }

private:
    std::shared_ptr<const Kernel> parseDeclaration()
    {
        std::string returnType;
        std::string name;
        std::vector<KernelArgumentType> signature;
        if (!expectWord("kernel") || !takeIdentifier("a return type", returnType)
            || !takeIdentifier("a kernel name", name) || !expectSymbol("(")
            || !parseArguments(signature) || !expectSymbol(";"))
            return nullptr;
        return resolve(name, signature);
    }

    bool parseArguments(std::vector<KernelArgumentType>& signature)
    {
        if (m_token.text == ")")
            return expectSymbol(")");
        for (;;) {
            std::string type;
            std::string argumentName;
            if (!takeIdentifier("an argument type", type))
                return false;
            if (type == "sampler")
                signature.push_back(KernelArgumentType::Sampler);
            else if (type == "float")
                signature.push_back(KernelArgumentType::Float);
            else
                return fail("unknown argument type '" + type + "'");
            if (!takeIdentifier("an argument name", argumentName))
                return false;
            if (m_token.text == ")")
                return expectSymbol(")");
            if (!expectSymbol(","))
                return false;
        }
    }

    std::shared_ptr<const Kernel> resolve(const std::string& name, const std::vector<KernelArgumentType>& signature)
    {
        const std::optional<NativeKernel> native = m_registry.find(name);
        if (!native) {
            fail("unknown kernel '" + name + "'");
            return nullptr;
        }
        if (native->signature != signature) {
            fail("kernel '" + name + "' takes " + signatureText(native->signature) + " but is declared "
                 + signatureText(signature));
            return nullptr;
        }
        return std::make_shared<const Kernel>(name, signature, native->function);
    }

    bool takeIdentifier(const char* what, std::string& out)
    {
        const char c = m_token.text.empty() ? '\0' : m_token.text[0];
        if (!(std::isalpha(static_cast<unsigned char>(c)) || c == '_'))
            return fail(std::string("expected ") + what);
        out = m_token.text;
        m_token = m_lexer.next();
        return true;
    }

    bool expectWord(const char* word)
    {
        std::string found;
        if (!takeIdentifier((std::string("'") + word + "'").c_str(), found))
            return false;
        return found == word || fail(std::string("expected '") + word + "', found '" + found + "'");
    }

    bool expectSymbol(const char* symbol)
    {
        if (m_token.text != symbol)
            return fail(std::string("expected '") + symbol + "'");
        m_token = m_lexer.next();
        return true;
    }

    bool fail(const std::string& message)
    {
        if (m_error.empty())
            m_error = formatString("line %d: %s", m_token.line, message.c_str());
        return false;
    }

    KernelLexer m_lexer;
    const KernelRegistry& m_registry;
    Token m_token;
    std::string m_error;
};

} // namespace

KernelRegistry& KernelRegistry::shared()
{
    static KernelRegistry registry;
    return registry;
}

void KernelRegistry::add(NativeKernel kernel)
{
    std::lock_guard guard(m_mutex);
    std::string name = kernel.name;
    m_kernels.insert_or_assign(std::move(name), std::move(kernel));
}

std::optional<NativeKernel> KernelRegistry::find(std::string_view name) const
{
    std::lock_guard guard(m_mutex);
    const auto it = m_kernels.find(name);
    if (it == m_kernels.end())
        return std::nullopt;
    return it->second;
}

KernelCompileResult kernelsWithString(std::string_view source, const KernelRegistry& registry)
{
    return KernelParser(source, registry).parse();
}

} // namespace plyra
