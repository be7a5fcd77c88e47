#include "host/file_facts.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_folder.h"

namespace corvel::host {

namespace {

using Classes = std::vector<std::pair<std::string, std::uint64_t>>;
using Texts = std::vector<WideString>;

std::string HeaderOf(const std::string& schema) {
  return "ISO-10303-21;\nHEADER;\n"
         "FILE_DESCRIPTION(('view','more'),'2;1');\n"
         "FILE_NAME('n.ifc','2024-01-02T03:04:05',('A','B'),('O'),'pre','sys','auth');\n"
         "FILE_SCHEMA(('" +
         schema + "'));\nENDSEC;\nDATA;\n";
}

std::string ModelOf(const std::string& records, const std::string& schema = "IFC4") {
  return HeaderOf(schema) + records + "\nENDSEC;\nEND-ISO-10303-21;\n";
}

FileFacts FactsOf(const std::string& bytes, std::string_view name = "m.ifc") {
  const test::TemporaryFolder folder;
  return ReadFacts(folder.Write(name, bytes));
}

}  // namespace

TEST(FileFacts, HeaderFieldsAreTold) {
  const std::string model = ModelOf("");
  const FileFacts facts = FactsOf(model);
  ASSERT_NE(nullptr, facts.header);
  EXPECT_EQ((Texts{u"view", u"more"}), facts.header->fileDescription);
  EXPECT_EQ(u"2;1", facts.header->implementationLevel);
  EXPECT_EQ(u"n.ifc", facts.header->name);
  EXPECT_EQ((Texts{u"A", u"B"}), facts.header->author);
  EXPECT_EQ(u"auth", facts.header->authorization);
  EXPECT_EQ(u"IFC4", facts.header->schemaIdentifier);
  EXPECT_EQ(SchemaNamespace::IFC4, facts.schema);
  EXPECT_EQ(static_cast<std::int64_t>(model.size()), facts.bytes);
  EXPECT_EQ(0u, facts.records);
  EXPECT_EQ(Texts{}, facts.problems);
}

TEST(FileFacts, ClassesAreSortedByCountThenName) {
  const FileFacts facts =
      FactsOf(ModelOf("#1=IFCWALL('a');#2=IFCDOOR();#3=IFCBEAM();#4=IFCDOOR();\n"
                      "#5 = IFCWALL ( );#6=IFCWALL();"));
  EXPECT_EQ(6u, facts.records);
  EXPECT_EQ((Classes{{"IFCWALL", 3}, {"IFCDOOR", 2}, {"IFCBEAM", 1}}), facts.classes);
}

TEST(FileFacts, NoReleaseHasToKnowTheClasses) {
  const FileFacts facts = FactsOf(ModelOf("#1=IFCSPACESHIP(#2,#3);#2=IfcWall();"));
  EXPECT_EQ((Classes{{"IFCSPACESHIP", 1}, {"IfcWall", 1}}), facts.classes);
  EXPECT_EQ(Texts{}, facts.problems);
}

TEST(FileFacts, UnderscoresOfANameAreNotCounted) {
  EXPECT_EQ((Classes{{"IFCWALL", 1}}), FactsOf(ModelOf("#1=IFC_WALL();")).classes);
}

TEST(FileFacts, ComplexInstancesAndNamelessOnesAreToldApart) {
  const FileFacts facts =
      FactsOf(ModelOf("#1=(IFCA(1)IFCB(';'));#2=IFCWALL();#3=;#4='x';#5=(IFCA()IFCB());"));
  EXPECT_EQ((Classes{{"(complex)", 2}, {"(nameless)", 2}, {"IFCWALL", 1}}), facts.classes);
}

TEST(FileFacts, ReferencesAndStringsInsideARecordAreNoRecords) {
  const FileFacts facts =
      FactsOf(ModelOf("#1=IFCWALL('#2=IFCDOOR();',#7,(#8,#9),/* #3=IFCDOOR(); */$);"));
  EXPECT_EQ(1u, facts.records);
  EXPECT_EQ((Classes{{"IFCWALL", 1}}), facts.classes);
}

// What a reading of the arguments would stumble over.
TEST(FileFacts, NonsenseInsideARecordDoesNotMatter) {
  const FileFacts facts = FactsOf(ModelOf("#1=IFCWALL(#,#99999999999,@,1.2.3);#2=IFCDOOR();"));
  EXPECT_EQ((Classes{{"IFCDOOR", 1}, {"IFCWALL", 1}}), facts.classes);
  EXPECT_EQ(Texts{}, facts.problems);
}

TEST(FileFacts, AReplacedSchemaIsARemarkAndNoProblem) {
  const FileFacts facts = FactsOf(ModelOf("", "IFC4X3_RC4"));
  EXPECT_EQ(SchemaNamespace::IFC4X3_ADD2, facts.schema);
  EXPECT_EQ(Texts{u"Schema identifier: IFC4X3_RC4 is not supported. IFC4X3_ADD2 is used instead."},
            facts.remarks);
  EXPECT_EQ(Texts{}, facts.problems);
}

TEST(FileFacts, AnUnknownSchemaIsAProblemAndTheRecordsAreCountedAllTheSame) {
  const FileFacts facts = FactsOf(ModelOf("#1=IFCWALL();", "IFC5"));
  EXPECT_EQ(std::nullopt, facts.schema);
  EXPECT_EQ(Texts{u"Unknown schema identifier: IFC5"}, facts.problems);
  EXPECT_EQ(1u, facts.records);
}

TEST(FileFacts, AFileThatEndsInsideARecordNamesIt) {
  const FileFacts facts = FactsOf(HeaderOf("IFC4") + "#1=IFCWALL();\n#17=IFCDOOR('a");
  EXPECT_EQ(Texts{u"The file ends inside of record #17."}, facts.problems);
  EXPECT_EQ((Classes{{"IFCDOOR", 1}, {"IFCWALL", 1}}), facts.classes);
}

TEST(FileFacts, AFileThatEndsBetweenRecordsLacksItsClosingLine) {
  const auto cutAt = [](const char16_t* line) {
    return Texts{
        u"The closing line END-ISO-10303-21; is missing: the file seems to be cut short. The "
        u"reading ended in line " +
        WideString(line) + u"."};
  };
  EXPECT_EQ(cutAt(u"9"), FactsOf(HeaderOf("IFC4") + "#1=IFCWALL();\n").problems);
  EXPECT_EQ(cutAt(u"8"), FactsOf(HeaderOf("IFC4")).problems);
  EXPECT_EQ(cutAt(u"9"), FactsOf(HeaderOf("IFC4") + "#1=IFCWALL('\nEND-ISO-10303-21;');").problems);
  EXPECT_EQ(cutAt(u"8"), FactsOf(HeaderOf("IFC4") + "/* END-ISO-10303-21; */").problems);
  EXPECT_EQ(cutAt(u"8"), FactsOf(HeaderOf("IFC4") + "ENDSEC;END-ISO-10303-21").problems)
      << "its end is missing";
}

TEST(FileFacts, ClosingLinesAreMetHoweverMuchStandsBehind) {
  EXPECT_EQ(Texts{}, FactsOf(ModelOf("") + std::string(1 << 20, ' ')).problems);
  EXPECT_EQ(Texts{}, FactsOf(ModelOf("") + std::string(1 << 20, '\0')).problems);
}

TEST(FileFacts, AByteOf255EndsTheFile) {
  const FileFacts facts = FactsOf(HeaderOf("IFC4") + "#1=IFCWALL();\n\xFF#2=IFCWALL();\n" +
                                  "ENDSEC;\nEND-ISO-10303-21;\n");
  EXPECT_EQ(1u, facts.records);
  ASSERT_EQ(1u, facts.problems.size());
  EXPECT_TRUE(facts.problems[0].ends_with(u" The reading ended in line 9."));
}

TEST(FileFacts, ARecordWithoutASensibleNumberIsAProblem) {
  EXPECT_EQ(Texts{u"stoul argument out of range"},
            FactsOf(ModelOf("#4294967280=IFCWALL();")).problems);
  EXPECT_EQ(Texts{u"stoul argument out of range"}, FactsOf(ModelOf("#0=IFCWALL();")).problems);
  EXPECT_EQ(Texts{u"invalid stoul argument"}, FactsOf(ModelOf("#=IFCWALL();")).problems);
}

TEST(FileFacts, WithoutAHeaderThereIsNothingButTheSize) {
  const FileFacts facts = FactsOf("hello\n");
  EXPECT_EQ(nullptr, facts.header);
  EXPECT_EQ(6, facts.bytes);
  EXPECT_EQ(Texts{u"this is no STEP file, it begins with 'hello'"}, facts.problems);
  EXPECT_EQ(Texts{u"Unable to read header token. No schema identifier can be read."},
            FactsOf("ISO-10303-21;\nHEAD").problems);
}

TEST(FileFacts, FilesThatCannotBeReadTellWhy) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(Texts{u"there is no such file"}, ReadFacts(folder.Path("none.ifc")).problems);
  EXPECT_EQ(Texts{u"this is a folder, not a model"}, ReadFacts(folder.Path()).problems);
  EXPECT_EQ(Texts{u"this file is empty"}, ReadFacts(folder.Write("e.ifc", "")).problems);
  EXPECT_EQ(Texts{u"the name of a model has to end in .ifc or .ifczip"},
            ReadFacts(folder.Write("m.txt", ModelOf(""))).problems);
}

TEST(FileFacts, RecordsAcrossTheBordersOfTheBufferAreCounted) {
  // More than one buffer of 1 MiB, with records of all lengths at its border.
  std::string records;
  std::uint64_t count = 0;
  while (records.size() < 3u << 20) {
    ++count;
    records += "#" + std::to_string(count) + "=IFCWALL('" + std::string(count % 997, ';') + "');\n";
  }
  const FileFacts facts = FactsOf(ModelOf(records));
  EXPECT_EQ(count, facts.records);
  EXPECT_EQ((Classes{{"IFCWALL", count}}), facts.classes);
  EXPECT_EQ(Texts{}, facts.problems);
}

}  // namespace corvel::host
