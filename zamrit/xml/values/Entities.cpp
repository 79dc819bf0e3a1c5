#include <algorithm>
#include <array>
#include <string_view>

#include "zamrit/xml/values/EntitiesDetail.h"

namespace zm::detail {
namespace {

constexpr std::size_t cCount = 252;

// Names of characters that follow each other, the first one's code in front.
struct TRun {
  char16_t First;
  std::string_view Names;
};

constexpr TRun cRuns[] = {
    {34, "quot"},
    {38, "amp apos"},
    {60, "lt"},
    {62, "gt"},
    {160,
     "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg macr deg plusmn sup2 sup3 acute "
     "micro para middot cedil sup1 ordm raquo frac14 frac12 frac34 iquest Agrave Aacute Acirc Atilde Auml Aring AElig "
     "Ccedil Egrave Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc Otilde Ouml times Oslash "
     "Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute acirc atilde auml aring aelig ccedil egrave eacute "
     "ecirc euml igrave iacute icirc iuml eth ntilde ograve oacute ocirc otilde ouml divide oslash ugrave uacute ucirc "
     "uuml yacute thorn yuml"},
    {338, "OElig oelig"},
    {352, "Scaron scaron"},
    {376, "Yuml"},
    {402, "fnof"},
    {710, "circ"},
    {732, "tilde"},
    {913, "Alpha Beta Gamma Delta Epsilon Zeta Eta Theta Iota Kappa Lambda Mu Nu Xi Omicron Pi Rho"},
    {931, "Sigma Tau Upsilon Phi Chi Psi Omega"},
    {945,
     "alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu nu xi omicron pi rho sigmaf sigma tau upsilon "
     "phi chi psi omega"},
    {978, "upsih"},
    {982, "piv"},
    {8194, "ensp emsp"},
    {8201, "thinsp"},
    {8204, "zwnj zwj lrm rlm"},
    {8211, "ndash mdash"},
    {8216, "lsquo rsquo sbquo"},
    {8220, "ldquo rdquo bdquo"},
    {8224, "dagger Dagger bull"},
    {8230, "hellip"},
    {8240, "permil"},
    {8242, "prime Prime"},
    {8249, "lsaquo rsaquo"},
    {8254, "oline"},
    {8260, "frasl"},
    {8364, "euro"},
    {8465, "image"},
    {8472, "weierp"},
    {8476, "real"},
    {8482, "trade"},
    {8501, "alefsym"},
    {8592, "larr uarr rarr darr harr"},
    {8629, "crarr"},
    {8656, "lArr uArr rArr dArr hArr"},
    {8704, "forall"},
    {8706, "part exist"},
    {8709, "empty"},
    {8711, "nabla isin notin"},
    {8715, "ni"},
    {8719, "prod"},
    {8721, "sum minus"},
    {8727, "lowast"},
    {8730, "radic"},
    {8733, "prop infin"},
    {8736, "ang"},
    {8743, "and or cap cup int"},
    {8756, "there4"},
    {8764, "sim"},
    {8773, "cong"},
    {8776, "asymp"},
    {8800, "ne equiv"},
    {8804, "le ge"},
    {8834, "sub sup nsub"},
    {8838, "sube supe"},
    {8853, "oplus"},
    {8855, "otimes"},
    {8869, "perp"},
    {8901, "sdot"},
    {8968, "lceil rceil lfloor rfloor"},
    {9001, "lang rang"},
    {9674, "loz"},
    {9824, "spades"},
    {9827, "clubs"},
    {9829, "hearts diams"},
};

struct TEntity {
  std::int32_t Key = 0;
  char16_t Code = 0;
};

constexpr std::array<TEntity, cCount> SortedEntities() {
  std::array<TEntity, cCount> entities{};
  std::size_t count = 0;
  for (TRun run : cRuns) {
    while (!run.Names.empty()) {
      const std::size_t length = std::min(run.Names.find(' '), run.Names.size());
      char16_t name[cLongestEntity] = {};
      for (std::size_t i = 0; i < length; ++i) name[i] = static_cast<unsigned char>(run.Names[i]);
      entities.at(count++) = {EntityKey({name, length}), run.First++};
      run.Names.remove_prefix(std::min(length + 1, run.Names.size()));
    }
  }
  std::sort(entities.begin(), entities.end(), [](TEntity L, TEntity R) { return L.Key < R.Key; });
  return entities;
}

constexpr std::array<TEntity, cCount> cEntities = SortedEntities();
static_assert(cEntities.front().Code != 0, "there are 252 of them");
static_assert(std::adjacent_find(cEntities.begin(), cEntities.end(),
                                 [](TEntity L, TEntity R) { return L.Key == R.Key; }) == cEntities.end(),
              "no two entities fold to the same key");

}  // namespace

char16_t EntityOf(StringView Name) {
  if (Name.size() > cLongestEntity) return 0;
  const std::int32_t key = EntityKey(Name);
  const TEntity* at = cEntities.data();
  // Compiles to conditional moves: what is looked up does not follow a pattern that a branch could learn.
  for (std::size_t left = cCount; left > 1;) {
    const std::size_t half = left / 2;
    at += at[half].Key <= key ? half : 0;
    left -= half;
  }
  return at->Key == key ? at->Code : u'\0';
}

}  // namespace zm::detail
