// The boxes as the operator sees them.
#include "gui/dialogos.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>

#include "gui/banco_gui.h"

namespace {

// What the next modal box is, and what is done to it.
template <typename T>
void AlAbrirse(std::function<void(T&)> que) {
  QTimer::singleShot(50, [que] {
    auto* caja = qobject_cast<T*>(QApplication::activeModalWidget());
    ASSERT_NE(caja, nullptr) << "no modal box of that kind";
    que(*caja);
  });
}

TEST(Dialogos, AMessage) {
  gui::Dialogos dialogos;
  AlAbrirse<QMessageBox>([](QMessageBox& caja) {
    EXPECT_EQ(caja.text(), QStringLiteral("El Archivo 'ñ' no existe\nsegunda"));
    EXPECT_EQ(caja.windowTitle(), QStringLiteral("ImportDeMarcas"));
    EXPECT_EQ(caja.icon(), QMessageBox::Warning);
    EXPECT_EQ(caja.standardButtons(), QMessageBox::Ok);
    EXPECT_TRUE(caja.isModal());
    EXPECT_EQ(caja.checkBox(), nullptr);
    caja.button(QMessageBox::Ok)->click();
  });
  EXPECT_FALSE(dialogos.Show({"El Archivo 'ñ' no existe\r\nsegunda"}));
}

// A text is a text: a formula's "<b>" is not taken for bold.
TEST(Dialogos, TextsAreNotMarkup) {
  gui::Dialogos dialogos;
  AlAbrirse<QMessageBox>([](QMessageBox& caja) {
    EXPECT_EQ(caja.textFormat(), Qt::PlainText);
    caja.button(QMessageBox::Ok)->click();
  });
  dialogos.Show({"1<2 <b>x</b>"});
}

TEST(Dialogos, TheFollowingOnesCanBeSilenced) {
  gui::Dialogos dialogos;
  const auto aviso = [] {
    return ports::Notice{"Formato incorrecto en la linea 2", ports::Icon::Exclamation, true};
  };
  AlAbrirse<QMessageBox>([](QMessageBox& caja) {
    ASSERT_NE(caja.checkBox(), nullptr);
    EXPECT_EQ(caja.checkBox()->text(), QStringLiteral("No mostrar los siguientes avisos de esta carga"));
    EXPECT_FALSE(caja.checkBox()->isChecked());
    caja.button(QMessageBox::Ok)->click();
  });
  EXPECT_FALSE(dialogos.Show(aviso()));
  AlAbrirse<QMessageBox>([](QMessageBox& caja) {
    caja.checkBox()->click();
    caja.button(QMessageBox::Ok)->click();
  });
  EXPECT_TRUE(dialogos.Show(aviso()));
}

TEST(Dialogos, AQuestion) {
  gui::Dialogos dialogos;
  AlAbrirse<QMessageBox>([](QMessageBox& caja) {
    EXPECT_EQ(caja.text(), QStringLiteral("¿Confirma importar los datos?"));
    EXPECT_EQ(caja.icon(), QMessageBox::Warning);
    EXPECT_EQ(caja.button(QMessageBox::Yes)->text(), QStringLiteral("&Sí"));
    EXPECT_EQ(caja.button(QMessageBox::No)->text(), QStringLiteral("&No"));
    EXPECT_EQ(caja.defaultButton(), caja.button(QMessageBox::No));
    caja.button(QMessageBox::Yes)->click();
  });
  EXPECT_TRUE(dialogos.Confirm("¿Confirma importar los datos?"));
  AlAbrirse<QMessageBox>([](QMessageBox& caja) { caja.button(QMessageBox::No)->click(); });
  EXPECT_FALSE(dialogos.Confirm("x"));
  // Anything but Yes is No, and Enter is no yes.
  AlAbrirse<QMessageBox>([](QMessageBox& caja) { QTest::keyClick(&caja, Qt::Key_Return); });
  EXPECT_FALSE(dialogos.Confirm("x"));
  AlAbrirse<QMessageBox>([](QMessageBox& caja) { QTest::keyClick(&caja, Qt::Key_S, Qt::AltModifier); });
  EXPECT_TRUE(dialogos.Confirm("x"));
  AlAbrirse<QMessageBox>([](QMessageBox& caja) { QTest::keyClick(&caja, Qt::Key_Escape); });
  EXPECT_FALSE(dialogos.Confirm("x"));
  AlAbrirse<QMessageBox>([](QMessageBox& caja) { caja.close(); });
  EXPECT_FALSE(dialogos.Confirm("x"));
}

// Also where the summary is longer than the screen.
TEST(Dialogos, WhatTheQuestionIsAboutStandsUnderItAndTheButtonsStayInSight) {
  gui::Dialogos dialogos;
  std::string largo = "Archivo: <b>horas</b>.txt";
  for (int i = 0; i < 200; ++i) largo += "\r\n• línea " + std::to_string(i);
  for (const std::string& detalle : {std::string("Archivo: x.txt\r\n3 líneas"), largo}) {
    AlAbrirse<QMessageBox>([&](QMessageBox& caja) {
      EXPECT_EQ(caja.text(), QStringLiteral("¿Confirma?"));
      const auto* etiqueta = caja.findChild<QLabel*>(QStringLiteral("lblDetalle"));
      ASSERT_NE(etiqueta, nullptr);
      EXPECT_EQ(gui::A(etiqueta->text()), base::Replace(detalle, "\r\n", "\n"));
      EXPECT_EQ(etiqueta->textFormat(), Qt::PlainText);
      const QWidget* pregunta = caja.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
      const auto arriba = [&](const QWidget* w) { return w->mapTo(&caja, QPoint(0, 0)).y(); };
      EXPECT_GE(arriba(etiqueta->parentWidget()), arriba(pregunta) + pregunta->height());
      EXPECT_LE(arriba(etiqueta->parentWidget()) + etiqueta->parentWidget()->height(),
                arriba(caja.button(QMessageBox::Yes)));
      EXPECT_LT(caja.height(), 560);
      caja.button(QMessageBox::Yes)->click();
    });
    EXPECT_TRUE(dialogos.ConfirmWith("¿Confirma?", detalle));
  }
}

TEST(Dialogos, ABoxOfALoadOffersToStopIt) {
  gui::Dialogos dialogos;
  const auto aviso = [] {
    return ports::Notice{"Formato incorrecto en la linea 2", ports::Icon::Exclamation, true};
  };
  const auto detener = [](QMessageBox& caja) -> QAbstractButton* {
    for (QAbstractButton* boton : caja.buttons())
      if (boton->text() == QStringLiteral("&Detener la carga")) return boton;
    return nullptr;
  };
  AlAbrirse<QMessageBox>([&](QMessageBox& caja) {
    ASSERT_NE(detener(caja), nullptr);
    EXPECT_EQ(caja.defaultButton(), caja.button(QMessageBox::Ok));
    detener(caja)->click();
  });
  EXPECT_TRUE(dialogos.ShowStoppable(aviso()).stop);
  for (const Qt::Key tecla : {Qt::Key_Return, Qt::Key_Escape}) {
    AlAbrirse<QMessageBox>([&](QMessageBox& caja) { QTest::keyClick(&caja, tecla); });
    EXPECT_FALSE(dialogos.ShowStoppable(aviso()).stop);
  }
}

TEST(Dialogos, TheOpenDialogHasItsTitleAndFilter) {
  gui::Dialogos dialogos;
  AlAbrirse<QFileDialog>([](QFileDialog& caja) {
    EXPECT_EQ(caja.windowTitle(), QStringLiteral("Seleccionar la base a ingresar las Horas"));
    EXPECT_EQ(caja.nameFilters(), (QStringList{QStringLiteral("Bases de Access (*.mdb *.MDB)"),
                                               QStringLiteral("Todos los archivos (*)")}));
    caja.reject();
  });
  EXPECT_EQ(
      dialogos.PickFile("Seleccionar la base a ingresar las Horas", "Bases de Access (*.mdb)|*.mdb", ""), "");
}

TEST(Dialogos, AnEmptyFilterShowsEverything) {
  EXPECT_EQ(gui::Dialogos::FiltroDeQt(QString()), QStringLiteral("Todos los archivos (*)"));
}

TEST(Dialogos, TheColourStartsAtTheSwatch) {
  gui::Dialogos dialogos;
  AlAbrirse<QColorDialog>([](QColorDialog& caja) {
    EXPECT_EQ(caja.currentColor(), QColor(0x20, 0x40, 0x80));
    caja.setCurrentColor(QColor(255, 0, 0));
    caja.accept();
  });
  EXPECT_EQ(dialogos.PickColor(0x804020), 0x0000FF);
  AlAbrirse<QColorDialog>([](QColorDialog& caja) {
    caja.setCurrentColor(QColor(255, 0, 0));
    caja.reject();
  });
  EXPECT_EQ(dialogos.PickColor(0x804020), 0x804020);
}

}  // namespace
