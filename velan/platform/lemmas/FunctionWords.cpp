#include <algorithm>
#include <array>
#include <iterator>
#include <memory>

#include "velan/platform/lemmas/FunctionWordsInternal.h"

namespace velan {

namespace {

constexpr std::u16string_view kGerman =
    u"der die das den dem des dessen deren denen derer ein eine einen einem einer eines eins kein keine keinen keinem "
    u"keiner keines keins ich du er sie es wir ihr mich dich sich uns euch mir dir ihm ihn ihnen ihrer seiner meiner "
    u"deiner unser unsere unseren unserem unserer unseres euer eure euren eurem eurer eures mein meine meinen meinem "
    u"meines dein deine deinen deinem deines sein seine seinen seinem seines ihre ihren ihrem ihres man jemand "
    u"jemanden "
    u"jemandem niemand niemanden niemandem etwas nichts wer wen wem wessen was welch welche welchen welchem welcher "
    u"welches dies diese diesen diesem dieser dieses jene jenen jenem jener jenes jede jeden jedem jeder jedes jedwede "
    u"jeglicher jegliche manch manche manchen manchem mancher manches mehrere mehreren mehrerer einige einigen einigem "
    u"einiger einiges etliche etlichen alle allen allem aller alles all beide beiden beider beides viel viele vielen "
    u"vielem vieler vieles wenig wenige wenigen weniger mehr meist meiste meisten solch solche solchen solchem solcher "
    u"solches derselbe dieselbe dasselbe denselben demselben desselben dieselben derselben derjenige diejenige "
    u"dasjenige "
    u"denjenigen demjenigen diejenigen derjenigen desjenigen selbst selber einander ander andere anderen anderem "
    u"anderer "
    u"anderes anders ab an am ans auf aufs aus außer außerhalb bei beim bis durch durchs entlang für fürs gegen "
    u"gegenüber gemäß hinter hinterm hinters in im ins innerhalb laut mit mittels nach nahe neben ob oberhalb ohne per "
    u"pro samt seit statt anstatt trotz über überm übers um ums unter unterm unterhalb unters von vom vor vorm vors "
    u"während wegen wider zu zum zur zwecks zwischen und oder aber sondern denn doch jedoch sowie sowohl weder noch "
    u"entweder als wie wenn dass daß da damit weil obwohl obgleich indem nachdem bevor ehe sobald solange sofern "
    u"soweit "
    u"falls so dann also daher deshalb deswegen darum dennoch trotzdem außerdem zudem ferner hingegen dagegen dabei "
    u"dadurch dafür daran darauf daraus darin darüber darunter davon davor dazu dazwischen danach hier hierbei "
    u"hierdurch "
    u"hierfür hiermit hierzu hin her dort dorthin wo wobei wodurch wofür womit wonach woran worauf woraus worin "
    u"worüber "
    u"wovon wozu wohin woher wann warum weshalb wieso je desto umso nicht nie niemals nur auch sehr schon erst immer "
    u"wieder bereits gar ganz eben gerade etwa fast kaum sogar ja nein bzw ggf usw evtl sog ca vgl z b d h u a s o bin "
    u"bist ist sind seid war warst waren wart sei seien wäre wären wärst wärt gewesen habe hast hat haben habt hatte "
    u"hattest hatten hattet hätte hätten hättest gehabt werde wirst wird werden werdet wurde wurdest wurden wurdet "
    u"würde "
    u"würden würdest würdet worden geworden kann kannst können könnt konnte konnten könnte könnten könntest muss muß "
    u"musst müssen müsst musste mussten müsste müssten soll sollst sollen sollt sollte sollten solltest will willst "
    u"wollen wollt wollte wollten darf darfst dürfen dürft durfte durften dürfte dürften mag magst mögen mochte "
    u"mochten "
    u"möchte möchten lässt läßt siehe bitte zumindest mindestens wenigstens höchstens sofort jetzt nun heute oft "
    u"selten";

constexpr std::u16string_view kFrench =
    u"le la les l un une des du de d au aux à ce cet cette ces c ça cela ceci celui celle ceux celles mon ma mes ton "
    u"ta "
    u"tes son sa ses notre nos votre vos leur leurs je j tu il elle on nous vous ils elles me m te t se s lui y en moi "
    u"toi soi eux même mêmes qui que qu quoi dont où lequel laquelle lesquels lesquelles auquel à laquelle auxquels "
    u"auxquelles duquel desquels desquelles quel quelle quels quelles quelque quelques quelqu quelconque quiconque "
    u"chaque chacun chacune aucun aucune nul nulle tout toute tous toutes tel telle tels telles autre autres autrui "
    u"plusieurs certain certaine certains certaines rien personne avec sans sous sur dans par pour vers chez entre "
    u"contre depuis pendant durant avant après devant derrière dès hors jusque jusqu malgré outre parmi selon sauf "
    u"suivant via afin voici voilà et ou mais or ni car donc puis ainsi alors aussi comme si lorsque lorsqu quand "
    u"puisque "
    u"puisqu parce quoique quoiqu tandis cependant pourtant toutefois néanmoins sinon soit ne n pas plus moins point "
    u"jamais guère très trop peu beaucoup bien mal mieux assez tant autant si encore déjà toujours souvent ici là "
    u"ailleurs "
    u"non oui presque presqu seulement surtout plutôt ensuite enfin aujourd'hui hui aujourd oui hormis lors dessus "
    u"dessous dedans dehors suis es est sommes êtes sont étais était étions étiez étaient fus fut fûmes fûtes furent "
    u"serai seras sera serons serez seront serais serait serions seriez seraient sois soyons soyez soient fût étant "
    u"été "
    u"être ai as a avons avez ont avais avait avions aviez avaient eus eut eurent aurai auras aura aurons aurez auront "
    u"aurais aurait aurions auriez auraient aie aies ait ayons ayez aient eût ayant eu avoir peux peut pouvons pouvez "
    u"peuvent pouvait pouvaient pourra pourront pourrait pourraient puisse puissent dois doit devons devez doivent "
    u"devait devaient devra devront devrait devraient faut fallait faudra faudrait vais vas va vont fois voir "
    u"notamment";

constexpr std::u16string_view kEnglish =
    u"a an the i me my mine myself we us our ours ourselves you your yours yourself yourselves he him his himself she "
    u"her "
    u"hers herself it its itself they them their theirs themselves one ones who whom whose which what this that these "
    u"those such same other others another each every either neither both all any some few many much more most less "
    u"least several enough none nothing nobody everything everyone everybody something someone somebody anything "
    u"anyone "
    u"anybody of in on at by for with without within about against among amongst between into onto through throughout "
    u"during before after above below over under to from up down out off near upon toward towards until till since "
    u"besides beside across along around behind beyond despite per via unless and or but nor so yet if then else than "
    u"as "
    u"because although though while whereas whether when whenever where wherever why how however therefore thus hence "
    u"otherwise not no yes only also just too very even ever never always often again already still here there now "
    u"perhaps rather quite almost can could may might must shall should will would ought cannot indeed instead else "
    u"ourself thereof thereby therein herein hereby whereby wherein whence regardless";

constexpr std::u16string_view kSpanish =
    u"el la lo los las un una unos unas al del de a ante bajo cabe con contra desde durante en entre hacia hasta "
    u"mediante "
    u"para por según sin so sobre tras vía y e o u ni que pero sino mas aunque porque pues como cuando donde mientras "
    u"si "
    u"sí no ya muy más menos tan tanto tanta tantos tantas también tampoco nunca siempre aquí ahí allí así entonces "
    u"luego "
    u"además quizá quizás solo sólo casi apenas yo tú él ella ello nosotros nosotras vosotros vosotras ellos ellas "
    u"usted "
    u"ustedes me te se le les nos os mí ti consigo conmigo contigo mi mis tu tus su sus nuestro nuestra nuestros "
    u"nuestras "
    u"vuestro vuestra vuestros vuestras mío mía míos mías tuyo tuya tuyos tuyas suyo suya suyos suyas este esta esto "
    u"estos estas ese esa eso esos esas aquel aquella aquello aquellos aquellas éste ésta éstos éstas ése ésa ésos "
    u"ésas "
    u"quien quienes quién quiénes qué cuál cuáles cual cuales cuyo cuya cuyos cuyas cuánto cuánta cuántos cuántas "
    u"cuanto "
    u"cuanta cuantos cuantas cómo cuándo dónde alguien algo algún alguno alguna algunos algunas nadie nada ningún "
    u"ninguno "
    u"ninguna otro otra otros otras mismo misma mismos mismas todo toda todos todas cada cualquier cualquiera ambos "
    u"ambas "
    u"varios varias mucho mucha muchos muchas poco poca pocos pocas demás tal tales soy eres es somos sois son era "
    u"eras "
    u"éramos eran fui fue fueron fuera fueran fuese será serán sería serían sea sean siendo sido ser estoy estás está "
    u"estamos están estaba estaban estuvo esté estén estar he has ha hemos habéis han había habían hubo habrá habría "
    u"haya "
    u"hayan haber hay puede pueden podía podrá podría debe deben debía deberá debería";

constexpr std::u16string_view kItalian =
    u"il lo la i gli le l un uno una del dello della dei degli delle dell al allo alla ai agli alle all dal dallo "
    u"dalla "
    u"dai dagli dalle dall nel nello nella nei negli nelle nell sul sullo sulla sui sugli sulle sull col coi di d a ad "
    u"da "
    u"in con su per tra fra senza sotto sopra contro verso durante mediante presso dopo prima oltre entro fino dietro "
    u"davanti e ed o od né ma però anche pure se che chi cui quale quali quanto quanta quanti quante come quando dove "
    u"perché poiché mentre affinché benché sebbene dunque quindi allora così infatti invece inoltre non no sì più meno "
    u"molto molta molti molte poco poca pochi poche tanto tanta tanti tante troppo già ancora sempre mai qui qua lì là "
    u"ecco quasi solo soltanto io tu lui lei egli ella esso essa noi voi loro essi esse me te sé mi ti si ci vi ne mio "
    u"mia "
    u"miei mie tuo tua tuoi tue suo sua suoi sue nostro nostra nostri nostre vostro vostra vostri vostre questo questa "
    u"questi queste quello quella quelli quelle quel quei quegli ciò stesso stessa stessi stesse altro altra altri "
    u"altre "
    u"alcuno alcuna alcuni alcune nessuno nessuna nessun niente nulla qualche qualcosa qualcuno qualunque qualsiasi "
    u"ogni "
    u"ognuno ciascuno ciascuna tutto tutta tutti tutte entrambi entrambe tale tali sono sei è siamo siete ero eri era "
    u"eravamo erano fui fu furono sarà saranno sarebbe sarebbero sia siano fosse fossero essendo stato stata stati "
    u"state "
    u"essere ho hai ha abbiamo avete hanno avevo aveva avevano ebbe avrà avranno avrebbe abbia abbiano avendo avere "
    u"può "
    u"possono poteva potrà potrebbe deve devono doveva dovrà dovrebbe c quest quell sant";

constexpr std::u16string_view kDutch =
    u"de het een 't der den des ik je jij u hij zij ze het we wij jullie mij me jou hem haar ons hun hen zich mijn "
    u"jouw uw "
    u"zijn haar onze dit dat deze die wie wat welk welke wiens elk elke ieder iedere iedereen iemand niemand iets "
    u"niets "
    u"alles al alle allen beide beiden enkele enige sommige verschillende veel vele weinig meer meest minder ander "
    u"andere "
    u"anderen zelf zulk zulke men aan achter beneden bij binnen boven buiten door gedurende in langs met na naar naast "
    u"om "
    u"omtrent onder op over per rond sinds te tegen tegenover ten ter tijdens tot tussen uit van vanaf vanuit via "
    u"volgens "
    u"voor voorbij wegens zonder en of maar want dus noch als dan toen terwijl omdat doordat zodat indien hoewel mits "
    u"tenzij voordat nadat zodra zolang niet geen wel ook nog al reeds nu toch er hier daar waar hoe waarom wanneer "
    u"waarin waarbij waarmee waarop waarvan waardoor daarin daarbij daarmee daarop daarvan daardoor daarna daarom "
    u"hierin "
    u"hierbij hiermee hierop hiervan hierdoor ervan erop erin ermee zo zeer erg heel altijd nooit ooit vaak soms "
    u"steeds "
    u"weer slechts alleen ja nee ben bent is zijn was waren geweest wees heb hebt heeft hebben had hadden gehad word "
    u"wordt "
    u"worden werd werden geworden zal zult zullen zou zouden kan kun kunt kunnen kon konden moet moeten moest moesten "
    u"mag "
    u"mogen mocht mochten wil wilt willen wilde wilden";

constexpr std::u16string_view kPortuguese =
    u"o a os as um uma uns umas ao à aos às do da dos das no na nos nas num numa nuns numas dum duma pelo pela pelos "
    u"pelas "
    u"de d em por para com sem sob sobre até após ante contra desde durante entre perante segundo conforme mediante "
    u"trás "
    u"e ou nem mas porém contudo todavia pois porque que se como quando onde enquanto embora caso também logo portanto "
    u"assim então não sim já ainda sempre nunca jamais muito muita muitos muitas pouco pouca poucos poucas mais menos "
    u"tão "
    u"tanto tanta tantos tantas bem mal aqui aí ali lá cá só apenas quase eu tu ele ela nós vós eles elas você vocês "
    u"me te "
    u"lhe lhes nos vos mim ti si comigo contigo consigo conosco meu minha meus minhas teu tua teus tuas seu sua seus "
    u"suas "
    u"nosso nossa nossos nossas vosso vossa vossos vossas este esta estes estas isto esse essa esses essas isso aquele "
    u"aquela aqueles aquelas aquilo deste desta destes destas disto desse dessa desses dessas disso daquele daquela "
    u"daqueles daquelas neste nesta nestes nestas nisto nesse nessa nesses nessas nisso naquele naquela naqueles "
    u"naquelas "
    u"àquele àquela dele dela deles delas nele nela neles nelas quem qual quais quê cujo cuja cujos cujas quanto "
    u"quanta "
    u"quantos quantas alguém algo algum alguma alguns algumas ninguém nada nenhum nenhuma nenhuns nenhumas outro outra "
    u"outros outras mesmo mesma mesmos mesmas todo toda todos todas tudo cada qualquer quaisquer ambos ambas vários "
    u"várias "
    u"tal tais sou és é somos são era eram fui foi fomos foram fora será serão seria seriam seja sejam fosse fossem "
    u"sendo "
    u"sido ser estou está estamos estão estava estavam esteve esteja estejam estar tenho tens tem temos têm tinha "
    u"tinham "
    u"teve tiveram terá teria tenha tenham tendo tido ter hei há havia haverá haja haver pode podem podia poderá "
    u"poderia "
    u"deve devem devia deverá deveria";

constexpr struct {
  std::string_view language;
  std::u16string_view words;
} kLists[] = {{"de", kGerman},  {"fr", kFrench}, {"en", kEnglish},   {"es", kSpanish},
              {"it", kItalian}, {"nl", kDutch},  {"pt", kPortuguese}};
constexpr size_t kListCount = std::size(kLists);

std::vector<std::u16string_view> sortedWords(std::u16string_view list) {
  std::vector<std::u16string_view> words;
  while (!list.empty()) {
    const size_t end = std::min(list.find(u' '), list.size());
    words.push_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  std::sort(words.begin(), words.end());
  return words;
}

}  // namespace

const std::vector<std::u16string_view>& functionWords(std::string_view language) {
  using Lists = std::array<std::vector<std::u16string_view>, kListCount + 1>;  // the last one is empty
  static const Lists& sorted = *[] {  // never destroyed: other threads may still be stemming while the process ends
    auto lists = std::make_unique<Lists>();
    for (size_t i = 0; i < kListCount; ++i) (*lists)[i] = sortedWords(kLists[i].words);
    return lists.release();
  }();
  const auto found =
      std::find_if(std::begin(kLists), std::end(kLists), [&](const auto& list) { return list.language == language; });
  return sorted[static_cast<size_t>(found - std::begin(kLists))];
}

size_t lengthOfElision(std::u16string_view word, std::string_view language) {
  if (language != "fr" && language != "it" && language != "ca") return 0;
  const size_t apostrophe = word.find_first_of(u"'\u2019");
  return apostrophe == std::u16string_view::npos || apostrophe + 1 == word.size() ? 0 : apostrophe + 1;
}

}  // namespace velan
