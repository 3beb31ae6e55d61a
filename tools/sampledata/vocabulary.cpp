#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kVocabularyType = 0x3001;
constexpr CEPROPID kEnglish = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kGerman = PropertyId(2, CEVT_LPWSTR);
constexpr CEPROPID kFrench = PropertyId(3, CEVT_LPWSTR);
constexpr CEPROPID kGreek = PropertyId(4, CEVT_LPWSTR);
constexpr CEPROPID kJapanese = PropertyId(5, CEVT_LPWSTR);
constexpr CEPROPID kTries = PropertyId(6, CEVT_UI2);
constexpr CEPROPID kLastTried = PropertyId(7, CEVT_FILETIME);

struct Word {
    const WCHAR* english;
    const WCHAR* german;
    const WCHAR* french;
    const WCHAR* greek;
    const WCHAR* japanese;
};

constexpr Word kWords[] = {
    {u"anchor", u"der Anker", u"l'ancre", u"η άγκυρα", u"錨"},
    {u"apple", u"der Apfel", u"la pomme", u"το μήλο", u"林檎"},
    {u"autumn", u"der Herbst", u"l'automne", u"το φθινόπωρο", u"秋"},
    {u"bee", u"die Biene", u"l'abeille", u"η μέλισσα", u"蜂"},
    {u"bread", u"das Brot", u"le pain", u"το ψωμί", u"パン"},
    {u"bridge", u"die Brücke", u"le pont", u"η γέφυρα", u"橋"},
    {u"butterfly", u"der Schmetterling", u"le papillon", u"η πεταλούδα", u"蝶"},
    {u"candle", u"die Kerze", u"la bougie", u"το κερί", u"蝋燭"},
    {u"cat", u"die Katze", u"le chat", u"η γάτα", u"猫"},
    {u"cherry", u"die Kirsche", u"la cerise", u"το κεράσι", u"桜ん坊"},
    {u"clock", u"die Uhr", u"l'horloge", u"το ρολόι", u"時計"},
    {u"cloud", u"die Wolke", u"le nuage", u"το σύννεφο", u"雲"},
    {u"coast", u"die Küste", u"la côte", u"η ακτή", u"海岸"},
    {u"dream", u"der Traum", u"le rêve", u"το όνειρο", u"夢"},
    {u"echo", u"das Echo", u"l'écho", u"η ηχώ", u""},
    {u"evening", u"der Abend", u"le soir", u"το βράδυ", u"夕方"},
    {u"feather", u"die Feder", u"la plume", u"το φτερό", u"羽"},
    {u"fog", u"der Nebel", u"le brouillard", u"η ομίχλη", u"霧"},
    {u"friend", u"der Freund", u"l'ami", u"ο φίλος", u"友達"},
    {u"garden", u"der Garten", u"le jardin", u"ο κήπος", u"庭"},
    {u"harbour", u"der Hafen", u"le port", u"το λιμάνι", u"港"},
    {u"hedgehog", u"der Igel", u"le hérisson", u"ο σκαντζόχοιρος", u"針鼠"},
    {u"honey", u"der Honig", u"le miel", u"το μέλι", u"蜂蜜"},
    {u"island", u"die Insel", u"l'île", u"το νησί", u"島"},
    {u"key", u"der Schlüssel", u"la clé", u"το κλειδί", u"鍵"},
    {u"kite", u"der Drachen", u"le cerf-volant", u"ο χαρταετός", u"凧"},
    {u"ladder", u"die Leiter", u"l'échelle", u"η σκάλα", u"梯子"},
    {u"lantern", u"die Laterne", u"la lanterne", u"το φανάρι", u"提灯"},
    {u"letter", u"der Brief", u"la lettre", u"το γράμμα", u"手紙"},
    {u"lighthouse", u"der Leuchtturm", u"le phare", u"ο φάρος", u"灯台"},
    {u"map", u"die Karte", u"la carte", u"ο χάρτης", u"地図"},
    {u"market", u"der Markt", u"le marché", u"η αγορά", u"市場"},
    {u"mirror", u"der Spiegel", u"le miroir", u"ο καθρέφτης", u"鏡"},
    {u"moon", u"der Mond", u"la lune", u"το φεγγάρι", u"月"},
    {u"mountain", u"der Berg", u"la montagne", u"το βουνό", u"山"},
    {u"needle", u"die Nadel", u"l'aiguille", u"η βελόνα", u"針"},
    {u"owl", u"die Eule", u"la chouette", u"η κουκουβάγια", u"梟"},
    {u"pencil", u"der Bleistift", u"le crayon", u"το μολύβι", u"鉛筆"},
    {u"quince", u"die Quitte", u"le coing", u"το κυδώνι", u""},
    {u"rain", u"der Regen", u"la pluie", u"η βροχή", u"雨"},
    {u"river", u"der Fluss", u"le fleuve", u"το ποτάμι", u"川"},
    {u"road", u"die Straße", u"la route", u"ο δρόμος", u"道"},
    {u"roof", u"das Dach", u"le toit", u"η στέγη", u"屋根"},
    {u"sail", u"das Segel", u"la voile", u"το πανί", u"帆"},
    {u"sea", u"das Meer", u"la mer", u"η θάλασσα", u"海"},
    {u"shadow", u"der Schatten", u"l'ombre", u"η σκιά", u"影"},
    {u"silence", u"die Stille", u"le silence", u"η σιωπή", u"静けさ"},
    {u"snow", u"der Schnee", u"la neige", u"το χιόνι", u"雪"},
    {u"spoon", u"der Löffel", u"la cuillère", u"το κουτάλι", u"匙"},
    {u"spring", u"der Frühling", u"le printemps", u"η άνοιξη", u"春"},
    {u"star", u"der Stern", u"l'étoile", u"το αστέρι", u"星"},
    {u"storm", u"der Sturm", u"la tempête", u"η καταιγίδα", u"嵐"},
    {u"summer", u"der Sommer", u"l'été", u"το καλοκαίρι", u"夏"},
    {u"thimble", u"der Fingerhut", u"le dé à coudre", u"", u""},
    {u"tide", u"die Gezeiten", u"la marée", u"η παλίρροια", u"潮"},
    {u"umbrella", u"der Regenschirm", u"le parapluie", u"η ομπρέλα", u"傘"},
    {u"violin", u"die Geige", u"le violon", u"το βιολί", u""},
    {u"whale", u"der Wal", u"la baleine", u"η φάλαινα", u"鯨"},
    {u"window", u"das Fenster", u"la fenêtre", u"το παράθυρο", u"窓"},
    {u"winter", u"der Winter", u"l'hiver", u"ο χειμώνας", u"冬"},
    {u"scolding (old character)", u"schelten", u"gronder", u"", u"𠮟る"},
};

} // namespace

bool MakeVocabulary() {
    SampleTable table(
        u"Vocabulary", kVocabularyType,
        {{kEnglish, CEDB_SORT_CASEINSENSITIVE}, {kTries, CEDB_SORT_DESCENDING | CEDB_SORT_UNKNOWNFIRST}});
    Chance chance(61);
    for (const Word& word : kWords) {
        SampleRecord record;
        record.Text(kEnglish, word.english)
            .Text(kGerman, word.german)
            .Text(kFrench, word.french)
            .Text(kGreek, word.greek)
            .Text(kJapanese, word.japanese);
        if (!chance.OneIn(4)) {
            record.Number(kTries, chance.Between(1, 12))
                .Time(kLastTried, MomentFromToday(-chance.Between(0, 60), chance.Between(7, 22)));
        }
        table.Add(record);
    }
    return table.Succeeded();
}
