// The window on a program on a demo base; boxes are answered from a queue.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <memory>

#include "app/banco.h"
#include "gui/frm_principal2.h"
#include "gui/texto.h"

namespace prueba {

class Ventana : public Banco {
 protected:
  void TearDown() override {
    ventana_.reset();
    Banco::TearDown();
  }

  // Makes the window, runs its start-up and shows it.
  bool Iniciar(const std::string& linea) {
    ventana_.reset();
    Crear();
    ventana_ = std::make_unique<gui::FrmPrincipal2>(*programa_, gui::Tema::Claro(), nullptr);
    return ventana_->Iniciar(gui::De(linea));
  }
  void Mostrar() {
    ventana_->show();
    ventana_->activateWindow();
    Esperar();
  }
  // On the demo base, without a file.
  void Abrir() {
    Demo();
    ASSERT_TRUE(Iniciar(demo_.referencia));
    Mostrar();
  }
  // On the demo base with the demo's file loaded; its line 45 is malformed.
  void AbrirCargada() {
    Demo();
    ASSERT_TRUE(Iniciar(demo_.referencia + "*" + demo_.archivo));
    cajas_.esperadas = {"Formato incorrecto en la linea 45"};
    Mostrar();
    ASSERT_TRUE(cajas_.esperadas.empty()) << "the file named on the command line was not loaded";
  }
  static void Esperar() {
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
  }

  template <typename T>
  T* Hallar(const char* nombre) const {
    T* hallado = ventana_->findChild<T*>(QLatin1String(nombre));
    if (hallado == nullptr) throw std::runtime_error(std::string("no control ") + nombre);
    return hallado;
  }
  QLineEdit* Caja(const char* nombre) const { return Hallar<QLineEdit>(nombre); }
  QCheckBox* Tilde(const char* nombre) const { return Hallar<QCheckBox>(nombre); }
  QComboBox* Combo(const char* nombre) const { return Hallar<QComboBox>(nombre); }
  QTableView* Grilla(const char* nombre) const { return Hallar<QTableView>(nombre); }
  void Pulsar(const char* nombre) const { Hallar<QAbstractButton>(nombre)->click(); }
  static void Escribir(QLineEdit* caja, const char* texto) {
    caja->clear();
    QTest::keyClicks(caja, QString::fromUtf8(texto));
  }
  using Banco::Escribir;

  // The column of that own name.
  static int Columna(const QTableView* grilla, const char* nombre) {
    for (int i = 0; i < grilla->model()->columnCount(); ++i)
      if (grilla->model()->headerData(i, Qt::Horizontal, gui::kNombreDeColumna).toString() ==
          QLatin1String(nombre))
        return i;
    return -1;
  }
  static std::string Celda(const QTableView* grilla, int fila, const char* columna) {
    return gui::A(grilla->model()->index(fila, Columna(grilla, columna)).data().toString());
  }
  static bool SeVe(const QTableView* grilla, const char* columna) {
    return !grilla->isColumnHidden(Columna(grilla, columna));
  }
  // Loads these lines, keeping every one.
  void Cargar(const std::string& bytes) {
    Escribir("x.txt", bytes);
    if (programa_->Ver().OptFiltro != 0) {
      Escribir("vacio.txt", "");
      Caja("txtRuta")->setText(gui::De(Ruta("vacio.txt")));
      Caja("txtFiltro")->clear();
      Pulsar("OptFiltro_0");
    }
    Caja("txtRuta")->setText(gui::De(Ruta("x.txt")));
    QTest::keyClick(Caja("txtRuta"), Qt::Key_Return);
  }
  std::string Columna0(const char* columna) const {
    const QTableView* grilla = Grilla("GridAImportar");
    std::string todo;
    for (int i = 0; i < grilla->model()->rowCount(); ++i) todo += Celda(grilla, i, columna) + " ";
    return todo;
  }

  std::unique_ptr<gui::FrmPrincipal2> ventana_;
};

}  // namespace prueba
