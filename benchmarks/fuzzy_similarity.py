#!/usr/bin/env python3
"""Which similarity should `--fuzzy` take? Prints a table of what each finds, and of what else, in Markdown.

    apt-get download wamerican && dpkg -x wamerican_*.deb unpacked
    benchmarks/fuzzy_similarity.py build/test/tools/velan unpacked/usr/share/dict/american-english > table.md

Below are misspellings as people make them, each with the word that is meant. 20,000 words are picked from the list of
the argument, and those that are meant are added. Each misspelling is then searched among them with each similarity:
is the word found, and how many others are? The same is asked of the words as they are meant.
"""
import argparse
import concurrent.futures
import pathlib
import random
import re
import statistics
import subprocess
import tempfile

SLIPS = """
abscence absence, absolutly absolutely, accidently accidentally, accomodate accommodate, acheive achieve,
acording according, accross across, acknowlege acknowledge, acquaintence acquaintance, acquited acquitted,
adaquate adequate, addmission admission, adress address, advertisment advertisement, agravate aggravate,
agressive aggressive, agreemnt agreement, alchohol alcohol, allready already, almots almost, alot allot,
altough although, amature amateur, ammount amount, analysys analysis, anual annual, anwser answer,
apparant apparent, appearence appearance, appologize apologize, aproach approach, aproximately approximately,
archaelogy archaeology, arguement argument, arround around, artical article, asma asthma, assasin assassin,
athiest atheist, atendance attendance, auxillary auxiliary, availible available, awfull awful,
balence balance, bargin bargain, basicly basically, beautifull beautiful, becuase because, becomming becoming,
begining beginning, beleive believe, benificial beneficial, bicylce bicycle, bizzare bizarre, boundry boundary,
briliant brilliant, brocoli broccoli, buisness business, bussiness business, calender calendar, camoflage camouflage,
cantalope cantaloupe, carefull careful, carribean caribbean, catagory category, cemetary cemetery, changable changeable,
charachter character, cheif chief, choclate chocolate, circuit circuit, collaegue colleague, collectable collectible,
colum column, comming coming, comittee committee, commision commission, comparision comparison, competance competence,
completly completely, concious conscious, congradulate congratulate, consistant consistent, contaminent contaminant,
controll control, convienient convenient, copywrite copyright, correspondance correspondence, curiousity curiosity,
critisism criticism, curreny currency, daugther daughter, decieve deceive, definately definitely, definitly definitely,
dependant dependent, desparate desperate, develope develop, diffrent different, dilemna dilemma, diarrea diarrhea,
dissapear disappear, dissapoint disappoint, disasterous disastrous, disipline discipline, docter doctor,
drunkeness drunkenness, eigth eighth, embarass embarrass, enviroment environment, equiptment equipment, equivelant equivalent,
esential essential, exagerate exaggerate, excede exceed, excellant excellent, excercise exercise, exibition exhibition,
existance existence, expence expense, experiance experience, explaination explanation, extreem extreme, facinating fascinating,
familar familiar, febuary february, finaly finally, firey fiery, flourescent fluorescent, foriegn foreign, fourty forty,
foward forward, freind friend, fullfil fulfill, funtion function, garantee guarantee, gaurd guard, generaly generally,
goverment government, gramar grammar, grammer grammar, gratefull grateful, greatful grateful, garanty guaranty, guidence guidance,
happend happened, harbor harbour, harrass harass, heigth height, heros heroes, hieght height, hygene hygiene,
hypocrit hypocrite, ignorence ignorance, imediately immediately, immitate imitate, incidently incidentally, independant independent,
indispensible indispensable, inflamation inflammation, innoculate inoculate, inteligence intelligence, intresting interesting,
interupt interrupt, irrelevent irrelevant, iresistible irresistible, iland island, jewelery jewelry, judgement judgment,
kernal kernel, knowlege knowledge, labratory laboratory, languge language, leasure leisure, liason liaison, libary library,
lightening lightning, lightouse lighthouse, litrature literature, lonelyness loneliness, maintainance maintenance,
maintenence maintenance, managment management, medecine medicine, mediocer mediocre, millenium millennium, miniture miniature,
minumum minimum, mischevous mischievous, mispell misspell, morgage mortgage, mountian mountain, museeum museum, naturaly naturally,
neccessary necessary, necesary necessary, neigbour neighbor, nieghbor neighbor, ninty ninety, noticable noticeable,
nuisanse nuisance, obediant obedient, occassion occasion, occured occurred, occurence occurrence, ommit omit, oportunity opportunity,
orignal original, outragous outrageous, paralel parallel, parliment parliament, particulary particularly, pasttime pastime,
peice piece, peculier peculiar, percieve perceive, performence performance, permanant permanent, perseverence perseverance,
persistant persistent, personel personnel, phenomenom phenomenon, playwrite playwright, posession possession, posible possible,
potatos potatoes, practicle practical, preceeding preceding, prefered preferred, presance presence, privelege privilege,
probaly probably, proffesional professional, pronounciation pronunciation, prufe proof, publically publicly, quarentine quarantine,
questionaire questionnaire, realy really, reccomend recommend, recieve receive, reciept receipt, recipie recipe, refered referred,
religous religious, rember remember, repitition repetition, resistence resistance, restaraunt restaurant, rythm rhythm,
sacrafice sacrifice, saftey safety, scedule schedule, scisors scissors, secratary secretary, seige siege, sentance sentence,
seperate separate, sieze seize, similiar similar, sincerly sincerely, skilfull skillful, speach speech, speciman specimen,
stoped stopped, strenght strength, succesful successful, sucess success, supercede supersede, suprise surprise, surveilance surveillance,
temperture temperature, tendancy tendency, therefor therefore, thier their, threshhold threshold, tommorow tomorrow, tounge tongue,
tradgedy tragedy, transfered transferred, truely truly, twelth twelfth, tyrany tyranny, unforseen unforeseen, untill until,
usally usually, vaccum vacuum, vegatable vegetable, vehical vehicle, visious vicious, visable visible, wether weather, wich which,
wierd weird, wellcome welcome, whereever wherever, writting writing, yeild yield, yatch yacht
"""
SIMILARITIES = [0.85, 0.80, 0.75, 0.73, 0.72, 0.71, 0.70, 0.68, 0.66, 0.65, 0.60, 0.55]
WORDS = 20000


def found(tool, similarity, word, path):
    """The different words that the search finds."""
    done = subprocess.run([tool, "search", "-o", "-N", f"--fuzzy={similarity}", word, path], capture_output=True,
                          check=False)
    return {line.lower() for line in done.stdout.decode().splitlines()}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tool")
    parser.add_argument("words", type=pathlib.Path)
    parser.add_argument("--missed", type=float, help="list what this similarity misses")
    options = parser.parse_args()
    slips = [tuple(pair.split()) for pair in SLIPS.replace("\n", " ").split(",")]
    slips = [(wrong, right) for wrong, right in slips if wrong != right]
    words = sorted({word.lower() for word in options.words.read_text(encoding="utf-8").split()
                    if re.fullmatch(r"[A-Za-z]+", word)})
    picked = set(random.Random(1).sample(words, WORDS)) | {right for _, right in slips}
    print(f"{len(slips)} misspellings, {len(picked)} words\n")
    print("| similarity | words found | others per misspelling | median | most | others per correct word |")
    print("|---|---|---|---|---|---|")
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as file, concurrent.futures.ThreadPoolExecutor(2) as pool:
        file.write("\n".join(sorted(picked)))
        file.flush()
        for similarity in [options.missed] if options.missed else SIMILARITIES:
            hits = list(pool.map(lambda slip: found(options.tool, similarity, slip[0], file.name), slips))
            correct = list(pool.map(lambda slip: found(options.tool, similarity, slip[1], file.name), slips))
            right = sum(slip[1] in words for slip, words in zip(slips, hits))
            others = [len(words - {*slip}) for slip, words in zip(slips, hits)]
            beside = [len(words - {slip[1]}) for slip, words in zip(slips, correct)]
            print(f"| {similarity:.2f} | {right / len(slips):.1%} | {statistics.mean(others):.2f} | "
                  f"{statistics.median(others):g} | {max(others)} | {statistics.mean(beside):.2f} |", flush=True)
            if options.missed:
                print([slip for slip, words in zip(slips, hits) if slip[1] not in words])


if __name__ == "__main__":
    main()
